#include "engine_api/effects/equalizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

#include "desktop/dsp/filters/graphic_equalizer.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/tone.h"

namespace {

struct Destroyer {
  void operator()(IEqualizer* equalizer) const { equalizer->Destroy(); }
};
using EqualizerPointer = std::unique_ptr<IEqualizer, Destroyer>;

using Gains = std::array<float, 11>;

constexpr double kCentres[] = {16, 31.5, 63, 125, 250, 500, 1000, 2000, 4000, 8000, 16000};
constexpr Gains kRising = {1, 0, 0, 0, 0, 6, 7, 8, 9, 10, 0};
constexpr Gains kVoice = {0, -5.7f, 0, -4.6f, 0, 4, 4, 3, 2, 1, 1.3f};
constexpr Gains kMixer = {0, -5.7f, -1.5f, -4.6f, -3.4f, 2.7f, 2.3f, 0.6f, 2.1f, 1, 1.3f};
constexpr Gains kLowest = {3, -0.0f, 0, -0.0f, 0, 0, 0, 0, 0, 0, 0};
constexpr Gains kComb = {24, -24, 24, -24, 24, -24, 24, -24, 24, -24, 24};
constexpr Gains kAllUp = {24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24};

EqualizerPointer Create(const Gains& gains) {
  EqualizerPointer equalizer(CreateEqualizer());
  for (int band = 0; band < 11; ++band) {
    equalizer->SetEqGain(band, gains[static_cast<size_t>(band)]);
  }
  equalizer->SetEnabled(true);
  return equalizer;
}

void Process(IEqualizer& equalizer, std::vector<short>& samples, int rate, int channels = 1) {
  equalizer.Process(reinterpret_cast<char*>(samples.data()),
                    static_cast<int>(samples.size()) / channels, rate, channels, 16);
}

// Gain in dB at a frequency, from the response to an impulse.
class Response {
 public:
  Response(const Gains& gains, int rate) : m_rate(rate) {
    desktop::GraphicEqualizer equalizer;
    equalizer.SetGains(gains.data(), true);
    equalizer.SetEnabled(true);
    m_impulse.assign(static_cast<size_t>(rate), 0.0f);
    m_impulse[0] = 1;
    float* const rows[] = {m_impulse.data()};
    equalizer.Process(rows, 1, m_impulse.size(), rate);
  }

  double At(double frequency) const {
    const auto step = std::polar(1.0, -2 * std::numbers::pi * frequency / m_rate);
    std::complex<double> sum = 0, turn = 1;
    for (const float value : m_impulse) {
      sum += static_cast<double>(value) * turn;
      turn *= step;
    }
    return Decibels(std::abs(sum));
  }

 private:
  int m_rate;
  std::vector<float> m_impulse;
};

TEST(Equalizer, MeetsItsGainsAtTheCentres) {
  for (const int rate : {8000, 16000, 22050, 32000, 44100, 48000}) {
    for (const Gains& gains : {kRising, kVoice, kMixer, kLowest, kComb, kAllUp}) {
      const Response response(gains, rate);
      for (size_t band = 0; band < 11 && kCentres[band] < 0.45 * rate; ++band) {
        EXPECT_NEAR(response.At(kCentres[band]), static_cast<double>(gains[band]), 0.1)
            << kCentres[band] << " Hz at " << rate;
      }
    }
  }
}

TEST(Equalizer, StaysBelowTheHighestGainBetweenTheCentres) {
  for (const Gains& gains : {kRising, kVoice, kMixer, kLowest, kComb, kAllUp}) {
    const Response response(gains, 44100);
    const auto highest = static_cast<double>(*std::max_element(gains.begin(), gains.end()));
    for (double frequency = 10; frequency < 22000; frequency *= 1.06) {
      ASSERT_LT(response.At(frequency), highest + 1.0) << frequency;
    }
  }
}

TEST(Equalizer, GivesATheSetGainToATone) {
  for (const size_t band : {0u, 5u, 6u, 7u, 8u, 9u}) {
    std::vector<short> samples = Tone(kCentres[band], 3000, 44100, 44100, 2);
    Process(*Create(kRising), samples, 44100, 2);
    const double gain = Decibels(FitTone(samples, kCentres[band], 44100, 2).amplitude / 3000);
    EXPECT_NEAR(gain, static_cast<double>(kRising[band]), 0.1) << band;
  }
}

TEST(Equalizer, LeavesOutBandsNearHalfTheRate) {
  Gains gains{};
  gains[8] = gains[9] = gains[10] = 24;  // 4 kHz is 0.5 times 8 kHz.
  std::vector<short> samples = ToShorts(WhiteNoise(8000, 0.5, 1));
  const std::vector<short> before = samples;
  Process(*Create(gains), samples, 8000);
  EXPECT_EQ(samples, before);
}

TEST(Equalizer, ClampsGainsTo24Decibels) {
  Gains gains{}, limits{};
  gains[6] = 1000;
  gains[3] = -std::numeric_limits<float>::infinity();
  limits[6] = 24;
  limits[3] = -24;
  std::vector<short> samples = ToShorts(WhiteNoise(9600, 0.02, 2)), expected = samples;
  Process(*Create(gains), samples, 48000);
  Process(*Create(limits), expected, 48000);
  EXPECT_EQ(samples, expected);
}

TEST(Equalizer, ChangesNoBitWhileOffOrFlat) {
  const std::vector<short> noise = ToShorts(WhiteNoise(44100, 1, 3));
  std::vector<short> samples = noise;
  const EqualizerPointer equalizer = Create(kRising);
  equalizer->SetEnabled(false);
  EXPECT_FALSE(equalizer->GetEnabled());
  EXPECT_FALSE(equalizer->IsActive());
  Process(*equalizer, samples, 44100);
  EXPECT_EQ(samples, noise);
  Process(*Create({}), samples, 44100);
  EXPECT_EQ(samples, noise);
}

TEST(Equalizer, IsBitExactAgain20MsAfterItIsSwitchedOff) {
  const std::vector<short> noise = ToShorts(WhiteNoise(4410, 0.1, 4));
  const EqualizerPointer equalizer = Create(kRising);
  std::vector<short> samples = noise;
  Process(*equalizer, samples, 44100);
  EXPECT_NE(samples, noise);
  EXPECT_TRUE(equalizer->IsActive());
  equalizer->SetEnabled(false);
  EXPECT_TRUE(equalizer->IsActive() || !equalizer->GetEnabled());
  samples = noise;
  Process(*equalizer, samples, 44100);
  EXPECT_TRUE(std::equal(samples.begin() + 882, samples.end(), noise.begin() + 882));
  EXPECT_FALSE(equalizer->IsActive());
}

TEST(Equalizer, KeepsTheChannelsApart) {
  const std::vector<short> noise = ToShorts(WhiteNoise(44100, 0.1, 5));
  std::vector<short> both = Interleaved(noise, std::vector<short>(noise.size()));
  std::vector<short> alone = noise;
  Process(*Create(kRising), both, 44100, 2);
  Process(*Create(kRising), alone, 44100, 1);
  EXPECT_EQ(Channel(both, 2, 0), alone);
  EXPECT_EQ(Channel(both, 2, 1), std::vector<short>(noise.size()));
}

// A jump of gain would spread a 200 Hz tone over the whole spectrum.
TEST(Equalizer, FadesFromGainToGain) {
  std::vector<short> samples;
  const EqualizerPointer equalizer = Create({});
  for (int block = 0; block < 100; ++block) {
    equalizer->SetEqGain(5, block % 10 < 5 ? 0.0f : 12.0f);
    equalizer->SetEqGain(4, block % 10 < 5 ? 0.0f : -12.0f);
    std::vector<short> tone = Tone(200, 8000, 44100, 441);  // Two whole periods and more: below.
    for (int i = 0; i < 441; ++i) {
      tone[static_cast<size_t>(i)] = static_cast<short>(
          std::lrint(8000 * std::sin(2 * std::numbers::pi * 200 * (block * 441 + i) / 44100)));
    }
    Process(*equalizer, tone, 44100);
    samples.insert(samples.end(), tone.begin(), tone.end());
  }
  const std::vector<double> sound = ToDoubles(samples);
  std::vector<double> above = HighPassed(sound, 3000, 44100);
  above.erase(above.begin(), above.begin() + 4410);
  EXPECT_LT(Decibels(Peak(above) / Peak(sound)), -60);
}

TEST(Equalizer, TakesBothMeaningsOfTheSampleSize) {
  std::vector<short> bits = ToShorts(WhiteNoise(882, 0.1, 6)), bytes = bits, other = bits;
  const std::vector<short> before = bits;
  CapturedStderr log;
  EXPECT_EQ(Create(kRising)->Process(reinterpret_cast<char*>(bits.data()), 441, 44100, 2, 16), 441);
  EXPECT_EQ(Create(kRising)->Process(reinterpret_cast<char*>(bytes.data()), 441, 44100, 2, 2), 441);
  EXPECT_NE(bits, before);
  EXPECT_EQ(bits, bytes);
  EXPECT_TRUE(log.Lines().empty());
  const EqualizerPointer equalizer = Create(kRising);
  for (const int size : {0, 1, 4, 8, 24, 32}) {
    equalizer->Process(reinterpret_cast<char*>(other.data()), 441, 44100, 2, size);
  }
  EXPECT_EQ(other, before);
  EXPECT_EQ(log.Lines().size(), 1u) << log.Text();
}

TEST(Equalizer, DoesTheSameToInts) {
  std::vector<short> shorts = ToShorts(WhiteNoise(882, 0.1, 7));
  std::vector<int> ints(shorts.begin(), shorts.end());
  const std::vector<int> before = ints;
  EXPECT_EQ(Create(kRising)->Process(ints.data(), 441, 44100, 2, 16, 881), 441);
  EXPECT_EQ(ints, before) << "longer than the buffer";
  Create(kRising)->Process(ints.data(), 441, 44100, 2, 16, 882);
  Process(*Create(kRising), shorts, 44100, 2);
  EXPECT_EQ(ints, std::vector<int>(shorts.begin(), shorts.end()));
}

TEST(Equalizer, IgnoresBandsThatAreNone) {
  CapturedStderr log;
  const EqualizerPointer equalizer = Create({});
  for (const int band : {-1, 11, 12, 1000, -1000}) equalizer->SetEqGain(band, 10);
  equalizer->SetEqGain(5, std::nanf(""));
  EXPECT_EQ(log.Lines().size(), 1u) << log.Text();
  EXPECT_FALSE(equalizer->IsActive());
}

TEST(Equalizer, ForgetsTheSoundWhenFlushed) {
  std::vector<short> first = ToShorts(WhiteNoise(4410, 0.1, 8)), again = first;
  const EqualizerPointer equalizer = Create(kRising);
  Process(*equalizer, first, 44100);
  equalizer->Flush();
  Process(*equalizer, again, 44100);
  EXPECT_EQ(again, first);
}

// The interface is a contract of slots: callers in other binaries count them.
TEST(Equalizer, KeepsItsSlots) {
  IEqualizer* equalizer = CreateEqualizer();
  void** slots = *reinterpret_cast<void***>(equalizer);
  const auto setEnabled = reinterpret_cast<void (*)(IEqualizer*, bool)>(slots[7]);
  const auto getEnabled = reinterpret_cast<bool (*)(IEqualizer*)>(slots[6]);
  const auto isActive = reinterpret_cast<bool (*)(IEqualizer*)>(slots[8]);
  const auto setEqGain = reinterpret_cast<void (*)(IEqualizer*, int, float)>(slots[9]);
  const auto process = reinterpret_cast<int (*)(IEqualizer*, char*, int, int, int, int)>(slots[3]);
  const auto destroy = reinterpret_cast<void (*)(IEqualizer*)>(slots[2]);
  EXPECT_FALSE(getEnabled(equalizer));
  setEnabled(equalizer, true);
  EXPECT_TRUE(getEnabled(equalizer));
  EXPECT_FALSE(isActive(equalizer));
  setEqGain(equalizer, 6, 12);
  EXPECT_TRUE(isActive(equalizer));
  std::vector<short> tone = Tone(1000, 3000, 44100, 44100);
  EXPECT_EQ(process(equalizer, reinterpret_cast<char*>(tone.data()), 44100, 44100, 1, 2), 44100);
  EXPECT_NEAR(FitTone(tone, 1000, 44100).amplitude, 3000 * 3.981, 100);
  destroy(equalizer);
}

}  // namespace
