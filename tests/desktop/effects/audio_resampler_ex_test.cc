#include "engine_api/effects/audio_resampler_ex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/tone.h"

namespace {

using Samples = std::vector<short>;

struct Case {
  int rate, channels, targetRate, targetChannels;
};

// Blocks of 10 ms, as the routines cut them.
class Converter {
 public:
  explicit Converter(const Case& c)
      : m_source(static_cast<size_t>(c.rate / 100 * c.channels)),
        m_target(static_cast<size_t>(c.targetRate / 100 * c.targetChannels)),
        m_converter(IAudioResamplerEx::Create(U(c.rate / 100), U(c.rate), U(c.channels),
                                              U(c.targetRate / 100), U(c.targetRate),
                                              U(c.targetChannels), nullptr)) {}
  ~Converter() { IAudioResamplerEx::Destroy(m_converter); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  Samples Convert(const Samples& in) {
    Samples out;
    Samples block(m_target);
    for (size_t at = 0; at + m_source <= in.size(); at += m_source) {
      EXPECT_TRUE(m_converter->Convert(&in[at], U(m_source), block.data(), U(m_target)));
      out.insert(out.end(), block.begin(), block.end());
    }
    return out;
  }

  IAudioResamplerEx& operator*() { return *m_converter; }

 private:
  template <typename T>
  static uint32_t U(T value) {
    return static_cast<uint32_t>(value);
  }

  const size_t m_source;
  const size_t m_target;
  IAudioResamplerEx* m_converter;
};

// Every pair that the tests of codecs use.
std::vector<Case> Pairs() {
  std::vector<Case> pairs;
  for (const int rate : {8000, 16000, 32000, 44100, 48000}) {
    for (const int channels : {1, 2}) {
      for (const auto& [targetRate, targetChannels] :
           {std::pair(16000, 1), {44100, 2}, {48000, 2}}) {
        pairs.push_back({rate, channels, targetRate, targetChannels});
      }
    }
  }
  return pairs;
}

Samples ConvertTone(const Case& c, double frequency, double amplitude = 14000) {
  return Converter(c).Convert(Tone(frequency, amplitude, c.rate, c.rate, c.channels));
}

double LevelDb(const Samples& samples) {
  double energy = 0;
  for (size_t i = samples.size() / 4; i < samples.size() * 3 / 4; ++i) {
    energy += static_cast<double>(samples[i]) * samples[i];
  }
  return 10 * std::log10(energy / (static_cast<double>(samples.size()) / 2) + 1e-9);
}

class AudioResamplerExPair : public testing::TestWithParam<Case> {};

TEST_P(AudioResamplerExPair, GivesOneWholeBlockForEach) {
  const Case& c = GetParam();
  const size_t blocks = 7;
  const Samples in(blocks * static_cast<size_t>(c.rate / 100 * c.channels), 100);
  EXPECT_EQ(Converter(c).Convert(in).size(),
            blocks * static_cast<size_t>(c.targetRate / 100 * c.targetChannels));
}

TEST_P(AudioResamplerExPair, KeepsAToneClean) {
  const Case& c = GetParam();
  const Samples out = ConvertTone(c, 1000);
  for (int channel = 0; channel < c.targetChannels; ++channel) {
    const ToneFit fit = FitTone(out, 1000, c.targetRate, c.targetChannels, channel);
    EXPECT_NEAR(fit.amplitude, 14000, 14) << channel;
    EXPECT_LE(fit.residualDb, -85) << channel;
  }
}

TEST_P(AudioResamplerExPair, IsFlatToNineTenthsOfTheLowerHalfRate) {
  const Case& c = GetParam();
  const double half = std::min(c.rate, c.targetRate) / 2.0;
  for (const double part : {0.02, 0.2, 0.5, 0.75, 0.85, 0.9}) {
    const Samples out = ConvertTone(c, part * half);
    const ToneFit fit = FitTone(out, part * half, c.targetRate, c.targetChannels);
    EXPECT_NEAR(20 * std::log10(fit.amplitude / 14000), 0, 0.5) << part;
  }
}

TEST_P(AudioResamplerExPair, TakesAwayWhatTheTargetCannotHold) {
  const Case& c = GetParam();
  const double tone = 20 * std::log10(14000 / std::sqrt(2.0));
  for (double part = 1.05; part * c.targetRate < 0.98 * c.rate; part += 0.1) {
    EXPECT_LE(LevelDb(ConvertTone(c, part * c.targetRate / 2)) - tone, -85) << part;
  }
}

INSTANTIATE_TEST_SUITE_P(, AudioResamplerExPair, testing::ValuesIn(Pairs()), [](const auto& info) {
  const Case& c = info.param;
  return "From" + std::to_string(c.rate) + "x" + std::to_string(c.channels) + "To" +
         std::to_string(c.targetRate) + "x" + std::to_string(c.targetChannels);
});

TEST(AudioResamplerEx, StaysCleanWhenDifferentChannelsAreMixedDown) {
  const int rate = 44100;
  const Samples left = Tone(1000, 14000, rate, rate);
  Samples stereo;
  for (const short sample : left) stereo.insert(stereo.end(), {sample, 0});
  const Samples out = Converter({rate, 2, 16000, 1}).Convert(stereo);
  const ToneFit fit = FitTone(out, 1000, 16000);
  EXPECT_NEAR(fit.amplitude, 7000, 7);
  EXPECT_LE(fit.residualDb, -80);
}

TEST(AudioResamplerEx, MixesEveryChannelIntoMono) {
  EXPECT_EQ(Converter({200, 4, 200, 1}).Convert({10, 20, 30, 40, -100, 0, 0, 50}),
            (Samples{25, -12}));
}

TEST(AudioResamplerEx, CopiesMonoToEveryChannel) {
  EXPECT_EQ(Converter({200, 1, 200, 3}).Convert({7, -8}), (Samples{7, 7, 7, -8, -8, -8}));
}

TEST(AudioResamplerEx, KeepsTheFirstChannelsOfMany) {
  EXPECT_EQ(Converter({200, 4, 200, 2}).Convert({1, 2, 3, 4, 5, 6, 7, 8}), (Samples{1, 2, 5, 6}));
}

TEST(AudioResamplerEx, LeavesFurtherChannelsSilent) {
  EXPECT_EQ(Converter({200, 2, 200, 4}).Convert({1, 2, 5, 6}), (Samples{1, 2, 0, 0, 5, 6, 0, 0}));
}

TEST(AudioResamplerEx, TakesSeventeenChannels) {
  Samples in;
  for (int i = 0; i < 4800; ++i) {
    for (int channel = 0; channel < 17; ++channel) in.push_back(static_cast<short>(100 * channel));
  }
  const Samples out = Converter({48000, 17, 16000, 17}).Convert(in);
  ASSERT_EQ(out.size(), 1600U * 17);
  for (size_t channel = 0; channel < 17; ++channel) {
    EXPECT_NEAR(out[1000 * 17 + channel], 100 * static_cast<int>(channel), 1);
  }
}

TEST(AudioResamplerEx, GivesTheSamplesThemselvesAtEqualFormats) {
  const Samples in = Tone(3000, 32767, 44100, 4410, 2);
  EXPECT_EQ(Converter({44100, 2, 44100, 2}).Convert(in), in);
}

TEST(AudioResamplerEx, LimitsFullScaleAndNeverWraps) {
  Samples square;
  for (int i = 0; i < 16000; ++i) square.push_back(i / 40 % 2 == 0 ? short{32767} : short{-32768});
  const Samples out = Converter({16000, 1, 48000, 1}).Convert(square);
  // Overshoot at the edges is cut off; a wrap would jump from one end to the other in one sample.
  for (size_t i = 1; i < out.size(); ++i) ASSERT_LT(std::abs(out[i] - out[i - 1]), 40000) << i;
  EXPECT_EQ(*std::max_element(out.begin(), out.end()), 32767);
  EXPECT_EQ(*std::min_element(out.begin(), out.end()), -32768);
}

TEST(AudioResamplerEx, ComesOutAsLateAsDocumented) {
  for (const Case& c : {Case{16000, 1, 48000, 1}, {48000, 1, 16000, 1}, {44100, 1, 16000, 1}}) {
    Samples impulse(static_cast<size_t>(c.rate / 5));
    impulse[static_cast<size_t>(c.rate / 10)] = 30000;
    const Samples out = Converter(c).Convert(impulse);
    const auto peak = std::max_element(out.begin(), out.end()) - out.begin();
    const double lag = static_cast<double>(peak) - c.targetRate / 10.0;
    EXPECT_NEAR(lag, 80.0 * c.targetRate / std::min(c.rate, c.targetRate), 1.5) << c.rate;
  }
}

TEST(AudioResamplerEx, ConvertsInPlace) {
  const Case c = {16000, 1, 48000, 2};
  const Samples in = Tone(440, 10000, c.rate, 160);
  Samples block(960);
  std::copy(in.begin(), in.end(), block.begin());
  Converter inPlace(c);
  ASSERT_TRUE((*inPlace).Convert(block.data(), 160, block.data(), 960));
  EXPECT_EQ(block, Converter(c).Convert(in));
}

TEST(AudioResamplerEx, WritesNothingForLessThanABlockOrForTooLittleRoom) {
  Converter converter({16000, 1, 48000, 2});
  const Samples in(161, 1000);
  Samples out(961, 77);
  EXPECT_FALSE((*converter).Convert(in.data(), 159, out.data(), 960));
  EXPECT_FALSE((*converter).Convert(in.data(), 160, out.data(), 959));
  EXPECT_FALSE((*converter).Convert(in.data(), 0, out.data(), 0));
  EXPECT_EQ(out, Samples(961, 77));
}

TEST(AudioResamplerEx, LeavesAloneWhatIsBeyondOneBlock) {
  // A rate that is no multiple of 100: callers hand over one sample more than a block.
  IAudioResamplerEx* converter = IAudioResamplerEx::Create(220, 22050, 2, 160, 16000, 1, "tag");
  EXPECT_EQ(converter->GetSrcSamples(), 440U);
  EXPECT_EQ(converter->GetDestSamples(), 160U);
  Samples in(441, 1000);
  in[440] = 32767;
  Samples out(200, 77);
  for (int block = 0; block < 10; ++block) {
    ASSERT_TRUE(converter->Convert(in.data(), 441, out.data(), 200));
    EXPECT_TRUE(std::all_of(out.begin() + 160, out.end(), [](short s) { return s == 77; }));
  }
  EXPECT_NEAR(out[100], 1000, 1);
  IAudioResamplerEx::Destroy(converter);
  EXPECT_EQ(converter, nullptr);
  IAudioResamplerEx::Destroy(converter);
}

TEST(AudioResamplerEx, SeesAChangeOfAnyOfTheFourValues) {
  Converter converter({16000, 1, 48000, 2});
  EXPECT_FALSE((*converter).IsFormatChange(16000, 1, 48000, 2));
  EXPECT_TRUE((*converter).IsFormatChange(8000, 1, 48000, 2));
  EXPECT_TRUE((*converter).IsFormatChange(16000, 2, 48000, 2));
  EXPECT_TRUE((*converter).IsFormatChange(16000, 1, 44100, 2));
  EXPECT_TRUE((*converter).IsFormatChange(16000, 1, 48000, 1));
}

TEST(AudioResamplerEx, ConvertsNothingInAFormatThatIsNone) {
  Samples samples(1000, 77);
  for (const auto& [frames, channels, targetFrames, targetChannels] : {std::tuple(0U, 0U, 160U, 1U),
                                                                       {160U, 1U, 0U, 1U},
                                                                       {160U, 1U, 160U, 0U},
                                                                       {160U, 0U, 160U, 1U},
                                                                       {160U, 65U, 160U, 1U},
                                                                       {0xFFFFFFFFU, 1U, 1U, 1U},
                                                                       {1U, 1U, 0xFFFFFFFFU, 1U}}) {
    CapturedStderr log;
    IAudioResamplerEx* converter = IAudioResamplerEx::Create(frames, 16000, channels, targetFrames,
                                                             16000, targetChannels, nullptr);
    ASSERT_NE(converter, nullptr);
    EXPECT_FALSE(converter->Convert(samples.data(), 1000, samples.data(), 1000));
    EXPECT_FALSE(converter->Convert(samples.data(), 1000, samples.data(), 1000));
    EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
    IAudioResamplerEx::Destroy(converter);
  }
  EXPECT_EQ(samples, Samples(1000, 77));
}

TEST(AudioResamplerEx, GivesTheSameBytesOnASecondRun) {
  const Case c = {44100, 2, 16000, 1};
  const Samples in = Tone(997, 20000, c.rate, c.rate, c.channels);
  EXPECT_EQ(Converter(c).Convert(in), Converter(c).Convert(in));
}

TEST(AudioResamplerEx, AsksForNoMemoryPerBlock) {
  Converter converter({44100, 2, 16000, 1});
  const Samples in = Tone(997, 20000, 44100, 441, 2);
  Samples out(160);
  const size_t before = AllocationCount();
  for (int block = 0; block < 50; ++block) (*converter).Convert(in.data(), 882, out.data(), 160);
  EXPECT_EQ(AllocationCount(), before);
  EXPECT_GT(before, 0U);
}

}  // namespace
