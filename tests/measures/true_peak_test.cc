#include "audio_measures/true_peak.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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
