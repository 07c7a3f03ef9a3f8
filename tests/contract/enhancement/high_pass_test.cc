// The high-pass filter, bit by bit.

#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "bench/enhancement/routines.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Each;
using testing::IsEmpty;

namespace {

using Samples = std::vector<short>;

Samples Filtered(int rate, int channels, const Samples& samples) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {rate, channels, samples};
  TestHPFProcess("in.wav", "out.wav");
  return engine.wavs["out.wav"].samples;
}

// The low 16 bits, as a signed number.
long long Low16(long long value) {
  const long long low = value & 0xffff;
  return low < 0x8000 ? low : low - 0x10000;
}

long long FloorDivide(long long value, long long divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// The same filter in wide integers, its state kept as 16 bits by hand.
Samples Reference(bool narrow, const Samples& samples, bool* wrapped = nullptr) {
  const long long b[2][5] = {{4012, -8024, 4012, 8002, -3913}, {3798, -7596, 3798, 7807, -3733}};
  const long long* const c = b[narrow ? 1 : 0];
  long long in1 = 0, in2 = 0, high1 = 0, low1 = 0, high2 = 0, low2 = 0;
  Samples out;
  for (const short d : samples) {
    long long sum = FloorDivide(low1 * c[3] + low2 * c[4], 32768);
    sum = (sum + high1 * c[3] + high2 * c[4]) * 2;
    sum += d * c[0] + in1 * c[1] + in2 * c[2];
    in2 = in1;
    in1 = d;
    high2 = high1;
    low2 = low1;
    const long long high = FloorDivide(sum, 8192);
    high1 = Low16(high);
    if (wrapped != nullptr && high != high1) *wrapped = true;
    low1 = Low16((sum - high1 * 8192) * 4);
    const long long rounded = std::min(std::max(sum + 2048, -134217728LL), 134217727LL);
    out.push_back(static_cast<short>(FloorDivide(rounded, 4096)));
  }
  return out;
}

Samples Noise(size_t count, unsigned seed) {
  std::mt19937 random(seed);
  Samples noise(count);
  for (short& sample : noise) sample = static_cast<short>(random());
  return noise;
}

// Full scale, with the signs of the reversed impulse response: the loudest input that there is.
Samples BangBang(bool narrow) {
  Samples impulse(400);
  impulse[0] = 16384;
  const Samples response = Reference(narrow, impulse);
  Samples input;
  for (int again = 0; again < 5; ++again) {
    for (size_t i = response.size(); i-- > 0;) {
      input.push_back(static_cast<short>((response[i] < 0) != (again % 2 == 1) ? -32768 : 32767));
    }
  }
  return input;
}

// The gain of the design at a frequency, from its coefficients: b in units of 1/4096 and a of
// 1/4096, as the recursion doubles what it adds.
double DesignGain(int rate, double frequency) {
  const bool narrow = rate == 8000;
  const double b = narrow ? 3798 : 4012;
  const double a1 = narrow ? 7807 : 8002;
  const double a2 = narrow ? -3733 : -3913;
  const double w = 2 * M_PI * frequency / rate;
  const double re = b * (1 - 2 * cos(w) + cos(2 * w));
  const double im = b * (2 * sin(w) - sin(2 * w));
  const double dre = 4096 - a1 * cos(w) - a2 * cos(2 * w);
  const double dim = a1 * sin(w) + a2 * sin(2 * w);
  return std::hypot(re, im) / std::hypot(dre, dim);
}

}  // namespace

TEST(TestHPFProcess, ClearsItsStateAndFiltersWholeBlocks) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {8000, 1, Samples(80 + 79)};
  TestHPFProcess("in.wav", "out.wav");
  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WebRtcSpl_MemSetW16(@1, 0, 2)
      WebRtcSpl_MemSetW16(@2, 0, 4)
      WavWriter#1(out.wav, 8000, 1)
      WavReader#1.ReadSamples(80) = 80
      WavWriter#1.WriteSamples(80)
      WavReader#1.ReadSamples(80) = 79
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestHPFProcess, IsTheSameToTheBitAtEveryRate) {
  const Samples noise = Noise(441 * 40, 1);
  EXPECT_EQ(Filtered(8000, 1, Noise(8000, 2)), Reference(true, Noise(8000, 2)));
  for (const int rate : {16000, 32000, 44100, 48000, 7999}) {
    Samples out = Filtered(rate, 1, noise);
    Samples expected = Reference(false, noise);
    expected.resize(out.size());
    EXPECT_EQ(out, expected) << rate;
  }
}

TEST(TestHPFProcess, WrapsItsStateAtFullScale) {
  for (const bool narrow : {true, false}) {
    const Samples input = BangBang(narrow);
    bool wrapped = false;
    Samples expected = Reference(narrow, input, &wrapped);
    EXPECT_TRUE(wrapped) << "the signal tells nothing";
    expected.resize(1920);  // Whole blocks at both rates.
    EXPECT_EQ(Filtered(narrow ? 8000 : 16000, 1, {input.begin(), input.begin() + 1920}), expected);
  }
}

TEST(TestHPFProcess, ClampsWhatLeaves16Bits) {
  const Samples out = Filtered(16000, 1, BangBang(false));
  EXPECT_TRUE(std::find(out.begin(), out.end(), 32767) != out.end());
  EXPECT_TRUE(std::find(out.begin(), out.end(), -32768) != out.end());
}

// Interleaved channels are one sequence: left alone would come out otherwise.
TEST(TestHPFProcess, SharesOneStateAmongChannels) {
  const Samples pairs = Noise(320 * 10, 3);
  EXPECT_EQ(Filtered(16000, 2, pairs), Reference(false, pairs));
  EXPECT_EQ(Filtered(8000, 2, pairs), Reference(true, pairs));
  EXPECT_EQ(Filtered(4000, 2, pairs), Reference(false, pairs)) << "8000 samples a second";
}

TEST(TestHPFProcess, BlocksAreTruncated) {
  EXPECT_EQ(Filtered(22050, 2, Noise(882, 4)).size(), 882U);
  EXPECT_EQ(Filtered(22050, 2, Noise(881, 4)).size(), 441U);
}

TEST(TestHPFProcess, LeavesSilenceSilentAndRemovesDc) {
  EXPECT_THAT(Filtered(8000, 1, Samples(800)), Each(0));
  const Samples out = Filtered(16000, 1, Samples(16000, 10000));
  EXPECT_GT(out[0], 9000);
  EXPECT_THAT(Samples(out.end() - 1600, out.end()),
              Each(testing::AllOf(testing::Ge(-1), testing::Le(1))));
}

TEST(TestHPFProcess, FollowsTheDesign) {
  for (const int rate : {8000, 16000}) {
    for (const double frequency : {20.0, 60.0, 120.0, 300.0, 1000.0, 3000.0}) {
      const auto half = static_cast<size_t>(rate);
      const size_t count = 2 * half;
      Samples tone(count);
      for (size_t i = 0; i < count; ++i) {
        tone[i] = static_cast<short>(
            std::lrint(10000 * sin(2 * M_PI * frequency * static_cast<double>(i) / rate)));
      }
      const Samples out = Filtered(rate, 1, tone);
      double energy = 0;
      for (size_t i = half; i < count; ++i) energy += static_cast<double>(out[i]) * out[i];
      const double gain = std::sqrt(2 * energy / static_cast<double>(half)) / 10000;
      EXPECT_NEAR(20 * log10(gain), 20 * log10(DesignGain(rate, frequency)), 0.1)
          << rate << " " << frequency;
    }
  }
}

TEST(TestHPFProcess, LeavesAnEmptyFileWhenTheInputIsMissing) {
  FakeEngine engine;
  TestHPFProcess("in.wav", "out.wav");
  EXPECT_EQ(engine.wavs.count("out.wav"), 1U);
  EXPECT_THAT(engine.wavs["out.wav"].samples, IsEmpty());
}
