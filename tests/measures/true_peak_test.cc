#include "audio_measures/true_peak.h"

#include <ebur128.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace audio_measures {
namespace {

// A sine at a quarter of the rate whose samples all lie 3 dB below its crest.
std::vector<float> Quarter(double amplitude, size_t samples) {
  std::vector<float> sine(samples);
  for (size_t i = 0; i < samples; ++i) {
    sine[i] =
        static_cast<float>(amplitude * std::sin(M_PI / 4 + M_PI / 2 * static_cast<double>(i)));
  }
  return sine;
}

// Within what EBU Tech 3341 allows a meter: 0.2 dB above, 0.4 dB below.
void ExpectPeak(const Figure& figure, double expected) {
  ASSERT_TRUE(figure.value) << figure.reason;
  EXPECT_LE(*figure.value, expected + 0.2);
  EXPECT_GE(*figure.value, expected - 0.4);
}

TEST(TruePeak, IsTheCrestBetweenTheSamples) {
  for (const int rate : {8000, 48000}) {
    TruePeak peak(1, rate);
    peak.Add(Quarter(0.5, 4800));
    ExpectPeak(peak.Peak(0), -6.02);
  }
}

TEST(TruePeak, HasEachChannelForItself) {
  const std::vector<float> sine = Quarter(1, 4800);
  std::vector<float> frames;
  for (const float sample : sine) frames.insert(frames.end(), {sample / 4, sample});
  TruePeak peak(2, 48000);
  peak.Add(frames);
  ExpectPeak(peak.Peak(0), -12.04);
  ExpectPeak(peak.Peak(1), 0);
}

TEST(TruePeak, TellsTheLastBlockFromAll) {
  TruePeak peak(1, 48000);
  peak.Add(Quarter(1, 4800));
  peak.Add(Quarter(0.1, 4800));
  peak.Add(Quarter(0.1, 4800));
  ExpectPeak(peak.Peak(0), 0);
  ExpectPeak(peak.LastPeak(0), -20);
}

// The peak of each channel in dBTP as libebur128 has it.
std::vector<double> Elsewhere(std::span<const float> frames, int channels, int rate) {
  const auto count = static_cast<unsigned>(channels);
  ebur128_state* meter =
      ebur128_init(count, static_cast<unsigned long>(rate), EBUR128_MODE_TRUE_PEAK);
  ebur128_add_frames_float(meter, frames.data(), frames.size() / count);
  std::vector<double> peaks(count);
  for (unsigned channel = 0; channel < count; ++channel) {
    ebur128_true_peak(meter, channel, &peaks[channel]);
    peaks[channel] = 20 * std::log10(peaks[channel]);
  }
  ebur128_destroy(&meter);
  return peaks;
}

// Adds frames in blocks of odd lengths, and compares.
void ExpectAsElsewhere(std::span<const float> frames, int channels, int rate) {
  TruePeak peak(channels, rate);
  auto left = frames;
  for (size_t block = 1; !left.empty(); block = block * 3 % 6007) {
    const size_t values = std::min(left.size(), block * static_cast<size_t>(channels));
    peak.Add(left.first(values));
    left = left.subspan(values);
  }
  const std::vector<double> expected = Elsewhere(frames, channels, rate);
  for (int channel = 0; channel < channels; ++channel) {
    EXPECT_NEAR(peak.Peak(channel).value.value_or(-INFINITY),
                expected[static_cast<size_t>(channel)], 1e-5)
        << rate << " Hz, channel " << channel;
  }
}

TEST(TruePeak, OfNoiseIsThatOfAnotherMeter) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> noise(-1, 1);
  for (const int rate : {8000, 44100, 95999, 96000, 191999, 192000}) {
    for (const int channels : {1, 2, 3}) {
      std::vector<float> frames(static_cast<size_t>(10007 * channels));
      for (float& sample : frames) sample = noise(random);
      ExpectAsElsewhere(frames, channels, rate);
    }
  }
}

// Samples whose signs are those of the weights of a place between two of them, so that no others of
// that magnitude make more of it; but never 8 dB, by which who asks for crests alone goes.
TEST(TruePeak, OfTheWorstSamplesIsThatOfAnotherMeter) {
  for (const int rate : {48000, 96000}) {
    for (size_t crest = 30; crest < 40; ++crest) {
      std::vector<float> samples(101);
      for (size_t i = 0; i < samples.size(); ++i) {
        const double place = static_cast<double>(i) - static_cast<double>(crest) - 0.5;
        samples[i] = std::sin(M_PI * place) / place < 0 ? -0.7F : 0.7F;
      }
      ExpectAsElsewhere(samples, 1, rate);
      EXPECT_GT(Elsewhere(samples, 1, rate)[0], 0);
      EXPECT_LT(Elsewhere(samples, 1, rate)[0], 8 - 3.1);
      std::ranges::reverse(samples);
      ExpectAsElsewhere(samples, 1, rate);
    }
  }
}

TEST(TruePeak, WhatCannotBeComputedSaysWhy) {
  TruePeak peak(1, 48000);
  EXPECT_STREQ(peak.Peak(0).reason, kNoSamples);
  peak.Add(std::vector<float>(480));
  EXPECT_STREQ(peak.Peak(0).reason, kSilence);
  EXPECT_EQ(peak.Peak(1).value, std::nullopt);
  peak.Add(std::vector<float>{0.5F, std::numeric_limits<float>::quiet_NaN()});
  EXPECT_STREQ(peak.Peak(0).reason, kNotFinite);
  TruePeak none(65, 48000);
  none.Add(std::vector<float>(65));
  EXPECT_NE(std::string(none.Peak(0).reason), "");
}

}  // namespace
}  // namespace audio_measures
