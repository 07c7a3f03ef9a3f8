#include "audio_measures/tempo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

// Clicks of 5 ms for 20 s; of every `bar` clicks all but the first are softer.
std::vector<float> Clicks(int rate, double bpm, int bar = 1, double softer = 1) {
  std::vector<float> samples(static_cast<size_t>(20 * rate));
  for (int n = 0;; ++n) {
    const auto start = static_cast<size_t>(std::lround(60.0 / bpm * n * rate));
    if (start + static_cast<size_t>(rate) / 200 > samples.size()) return samples;
    for (size_t i = 0; i < static_cast<size_t>(rate) / 200; ++i) {
      const double wave = std::sin(2 * M_PI * 1000 * static_cast<double>(i) / rate);
      samples[start + i] = static_cast<float>(0.5 * (n % bar == 0 ? 1 : softer) * wave);
    }
  }
}

double TempoOf(const std::vector<float>& samples, int rate) {
  return Tempo(samples, rate).value.value_or(0);
}

TEST(Tempo, IsThatOfClicksAtAnyRate) {
  for (const int rate : {8000, 11025, 44100, 48000}) {
    for (const double bpm : {45.0, 60.0, 99.5, 120.0, 140.0, 163.7}) {
      EXPECT_NEAR(TempoOf(Clicks(rate, bpm), rate), bpm, 0.2) << rate;
    }
  }
}

TEST(Tempo, IsThatOfTheClicksAndNotOfTheBars) {
  EXPECT_NEAR(TempoOf(Clicks(16000, 128, 4, 0.4), 16000), 128, 0.2);
}

TEST(Tempo, NoiseAndLevelDoNotCount) {
  const std::vector<float> clicks = Sum(Clicks(16000, 112), Noise(20 * 16000, 0.02, 1));
  EXPECT_NEAR(TempoOf(clicks, 16000), 112, 0.2);
  EXPECT_NEAR(TempoOf(Later(clicks, 0, 0.001), 16000), 112, 0.2);
  EXPECT_NEAR(TempoOf(Later(clicks, 3333, -1), 16000), 112, 0.2);
}

TEST(Tempo, OfTwoAnOctaveApartIsTheOneNearer120) {
  EXPECT_NEAR(TempoOf(Clicks(16000, 200), 16000), 100, 0.2);
  EXPECT_NEAR(TempoOf(Clicks(16000, 160), 16000), 160, 0.2);
}

// One and the same loudness at different pitches: level alone would not see them.
TEST(Tempo, IsSeenWhereOnlyThePitchChanges) {
  std::vector<float> samples = Noise(20 * 16000, 0.003, 1);
  double phase = 0;
  for (size_t i = 0; i < samples.size(); ++i) {
    const bool high = i / 8000 % 2 == 1;
    phase += 2 * M_PI * (high ? 1500 : 500) / 16000;
    samples[i] += static_cast<float>(0.1 * std::sin(phase));
  }
  EXPECT_NEAR(TempoOf(samples, 16000), 120, 0.5);
}

// Notes from any time on, all of which end on the beat: nothing starts there.
TEST(Tempo, WhereNotesEndDoesNotCount) {
  std::mt19937 random(1);
  const std::vector<float> noise = Noise(60 * 16000, 0.1, 1);
  std::vector<float> samples(noise.size());
  for (size_t end = 8000; end <= samples.size(); end += 8000) {
    for (size_t i = end - 1000 - random() % 5000; i < end; ++i) samples[i] = noise[i];
  }
  EXPECT_GT(std::fabs(TempoOf(samples, 16000) - 120), 5);
}

// Of 6 s, what noise has by chance counts as nothing; of a minute, that one click in four keeps
// time.
TEST(Tempo, IsUnknownWhereItIsNotClear) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    EXPECT_FALSE(Tempo(Noise(6 * 8000, 0.1, seed), 8000).value) << seed;
  }
  std::mt19937 random(1);
  std::vector<float> clicks(size_t{180} * 8000);
  for (int n = 0; n < 350; ++n) {
    const size_t place = n % 4 == 0 ? static_cast<size_t>(n) * 4000 : random() % 1400000;
    std::fill_n(clicks.begin() + static_cast<std::ptrdiff_t>(place), 40, 0.5F);
  }
  EXPECT_FALSE(Tempo(clicks, 8000).value);
}

TEST(Tempo, OfWhatDoesNotRepeatItselfIsUnknown) {
  const char* const none = "nothing that repeats itself";
  EXPECT_STREQ(Tempo(Noise(20 * 16000, 0.1, 1), 16000).reason, none);
  EXPECT_STREQ(Tempo(std::vector<float>(20 * 16000, 0.5F), 16000).reason, none);
  EXPECT_STREQ(Tempo(std::vector<float>(20 * 16000), 16000).reason, kSilence);
  EXPECT_STREQ(Tempo({}, 16000).reason, kNoSamples);
  EXPECT_STREQ(Tempo(std::vector<float>(6 * 16000 - 1, 0.5F), 16000).reason, kTooShort);
  EXPECT_STREQ(Tempo(std::vector<float>(6 * 16000, 0.5F), 16000).reason, none);
}

TEST(Tempo, IsThatOfAllChannels) {
  const int rate = 16000;
  const std::vector<float> left = Clicks(rate, 60);
  const std::vector<float> right = Later(left, 8000, 1);
  const std::vector<std::string_view> names = {"tempo"};
  Inputs inputs = {.output = {rate, {left, right}}};
  const std::vector<NamedFigure> figures = Compute(inputs, names);
  ASSERT_EQ(figures.size(), 1U);
  EXPECT_FALSE(figures[0].channel);
  EXPECT_NEAR(*figures[0].figure.value, 120, 0.2);
  std::vector<float> broken = right;
  broken[5] = std::numeric_limits<float>::infinity();
  inputs.output.channels[1] = broken;
  EXPECT_STREQ(Compute(inputs, names)[0].figure.reason, kNotFinite);
}

}  // namespace
}  // namespace audio_measures
