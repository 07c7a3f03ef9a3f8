#include "audio_measures/pitch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

// A second of harmonics of a pitch, softer by `fall` from one to the next.
std::vector<float> Harmonics(int rate, double hertz, int first, int last, double fall) {
  std::vector<float> samples(static_cast<size_t>(rate));
  for (size_t i = 0; i < samples.size(); ++i) {
    double sum = 0;
    for (int n = first; n <= last; ++n) {
      sum += std::pow(fall, n - first) *
             std::sin(2 * M_PI * hertz * n * static_cast<double>(i) / rate + 0.3 * n * n);
    }
    samples[i] = static_cast<float>(0.1 * sum);
  }
  return samples;
}

std::vector<float> Voice(int rate, double hertz) { return Harmonics(rate, hertz, 1, 5, 0.8); }

double PitchOf(const std::vector<float>& samples, int rate) {
  return MedianPitch(samples, rate).value.value_or(0);
}

// A parabola is not quite what the difference looks like where a period has few samples.
TEST(MedianPitch, IsThatOfTheHarmonicsAtAnyRate) {
  for (const int rate : {8000, 11025, 16000, 44100, 48000, 96000, 192000}) {
    for (const double hertz : {63.0, 110.0, 233.1, 612.0}) {
      EXPECT_NEAR(1200 * std::log2(PitchOf(Voice(rate, hertz), rate) / hertz), 0, 3)
          << rate << ' ' << hertz;
    }
  }
}

TEST(MedianPitch, IsNotThatOfTheLoudestHarmonic) {
  EXPECT_NEAR(PitchOf(Harmonics(16000, 150, 1, 4, 3), 16000), 150, 0.2);
  EXPECT_NEAR(PitchOf(Harmonics(16000, 150, 2, 5, 1), 16000), 150, 0.2);
}

TEST(MedianPitch, ReachesFrom60HertzTo1000) {
  EXPECT_NEAR(PitchOf(Voice(48000, 61), 48000), 61, 0.1);
  EXPECT_NEAR(PitchOf(Voice(48000, 980), 48000), 980, 1);
}

// Two thirds of the time at one pitch, with noise and a soft tone between.
TEST(MedianPitch, IsTheMiddleOfWhatIsVoiced) {
  std::vector<float> samples = Voice(16000, 200);
  const std::vector<float> second = Voice(16000, 200);
  const std::vector<float> third = Voice(16000, 300);
  const std::vector<float> noise = Noise(32000, 0.1, 1);
  std::vector<float> soft = Harmonics(16000, 400, 1, 1, 1);
  for (float& sample : soft) sample *= 0.03F;
  samples.insert(samples.end(), noise.begin(), noise.end());
  samples.insert(samples.end(), second.begin(), second.end());
  for (int i = 0; i < 4; ++i) samples.insert(samples.end(), soft.begin(), soft.end());
  samples.insert(samples.end(), third.begin(), third.end());
  EXPECT_NEAR(PitchOf(samples, 16000), 200, 0.2);
}

TEST(PitchCents, IsTheRatioAgainstTheReference) {
  const std::vector<float> reference = Voice(16000, 200);
  for (const double cents : {-1200.0, -700.0, -10.0, 0.0, 10.0, 300.0, 1200.0}) {
    const std::vector<float> output = Voice(16000, 200 * std::pow(2, cents / 1200));
    EXPECT_NEAR(*PitchCents(reference, output, 16000).value, cents, 2) << cents;
  }
}

// A voice that falls, and the same twice as slow and three semitones higher of which half is noise:
// each block has its own pitch to go by.
TEST(PitchCents, IsTakenBlockByBlock) {
  constexpr int kRate = 16000;
  const auto falling = [](double ratio, size_t length) {
    std::vector<float> samples(length);
    double phase = 0;
    for (size_t i = 0; i < length; ++i) {
      const double part = static_cast<double>(i) / static_cast<double>(length);
      phase += 2 * M_PI * ratio * 300 * std::pow(2, -part) / kRate;
      samples[i] = static_cast<float>(0.1 * (std::sin(phase) + std::sin(2 * phase)));
    }
    return samples;
  };
  const std::vector<float> reference = falling(1, size_t{3} * kRate);
  std::vector<float> output = falling(std::pow(2, 3.0 / 12), size_t{6} * kRate);
  const std::vector<float> noise = Noise(size_t{3} * kRate, 0.1, 1);
  std::ranges::copy(noise, output.begin());
  EXPECT_NEAR(*PitchCents(reference, output, kRate).value, 300, 5);
}

TEST(PitchCents, LengthAndLevelDoNotCount) {
  const std::vector<float> reference = Voice(16000, 200);
  std::vector<float> output(reference.begin(), reference.begin() + 8000);
  for (float& sample : output) sample *= -0.01F;
  EXPECT_NEAR(*PitchCents(reference, output, 16000).value, 0, 0.1);
}

TEST(PitchCents, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> voice = Voice(16000, 200);
  const auto because = [&](const std::vector<float>& samples) {
    EXPECT_STREQ(PitchCents(samples, voice, 16000).reason,
                 PitchCents(voice, samples, 16000).reason);
    return std::string(PitchCents(voice, samples, 16000).reason);
  };
  EXPECT_EQ(because({}), kNoSamples);
  // A window of 400 samples, the longest period of 266, and two more.
  EXPECT_EQ(because(std::vector<float>(667, 0.1F)), kTooShort);
  EXPECT_EQ(because(std::vector<float>(668)), kSilence);
  EXPECT_EQ(because(std::vector<float>(16000)), kSilence);
  EXPECT_EQ(because(Noise(16000, 0.1, 1)), "too little that has a pitch");
  std::vector<float> brief = Noise(16000, 0.1, 1);
  std::copy_n(voice.begin(), 1600, brief.begin());
  EXPECT_EQ(because(brief), "too little that has a pitch");
  std::copy_n(voice.begin(), 3200, brief.begin());
  EXPECT_TRUE(PitchCents(voice, brief, 16000).value);
}

TEST(PitchCents, IsComputedForEachChannel) {
  const std::vector<float> low = Voice(16000, 200);
  const std::vector<float> high = Voice(16000, 400);
  const Inputs inputs = {.output = {16000, {low, high}}, .reference = {16000, {low}}};
  const std::vector<NamedFigure> figures =
      Compute(inputs, std::vector<std::string_view>{"pitch_cents"});
  ASSERT_EQ(figures.size(), 3U);
  EXPECT_NEAR(*figures[0].figure.value, 0, 0.1);
  EXPECT_NEAR(*figures[1].figure.value, 1200, 2);
  EXPECT_NEAR(*figures[2].figure.value, 600, 1);
}

}  // namespace
}  // namespace audio_measures
