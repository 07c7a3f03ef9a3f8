#include "desktop/effects/voice/level_match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

constexpr int kRate = 16000;
constexpr size_t kBlock = 160;

// What becomes of `out`, which an effect made of `in` so many frames late.
Doubles Matched(const Doubles& in, const Doubles& out, size_t latency) {
  desktop::LevelMatch match(kRate, latency);
  Doubles matched;
  for (size_t at = 0; at < in.size(); at += kBlock) {
    std::vector<float> before(&in[at], &in[at] + kBlock);
    std::vector<float> after(&out[at], &out[at] + kBlock);
    const float* const heard[] = {before.data()};
    float* const rows[] = {after.data()};
    match.Listen(heard, 1, kBlock);
    match.Process(rows, 1, kBlock);
    matched.insert(matched.end(), after.begin(), after.end());
  }
  return matched;
}

// Noise that is 40 dB quieter in its first two seconds than in the next ones.
Doubles SuddenlyLoud() {
  Doubles noise = WhiteNoise(4 * kRate, 0.3, 1);
  for (size_t i = 0; i < 2 * kRate; ++i) noise[i] *= 0.01;
  return noise;
}

Doubles Times(Doubles samples, double gain) {
  for (double& sample : samples) sample *= gain;
  return samples;
}

// By how many dB a stretch of 10 ms is raised.
double GainAt(const Doubles& matched, const Doubles& out, size_t step) {
  return Decibels(Rms({&matched[step * kBlock], kBlock}) / Rms({&out[step * kBlock], kBlock}));
}

// While a loud sound is still on its way through the effect, what comes out is quieter than what
// goes in, and would be raised: a blast when the sound comes out.
TEST(LevelMatch, LeavesAloneWhatIsOnlyLate) {
  const Doubles in = SuddenlyLoud();
  for (const size_t latency : {size_t{1600}, size_t{2000}}) {
    Doubles out = in;
    std::rotate(out.begin(), out.end() - static_cast<std::ptrdiff_t>(latency), out.end());
    std::fill_n(out.begin(), latency, 0.0);
    const Doubles matched = Matched(in, out, latency);
    for (size_t step = latency / kBlock + 1; step < out.size() / kBlock; ++step) {
      // Where the latency is no whole number of steps, an onset is seen in two.
      ASSERT_NEAR(GainAt(matched, out, step), 0, latency % kBlock == 0 ? 0.01 : 1) << step;
    }
  }
}

// What an effect makes of loud sounds only is made up for within a few tenths of a second: neither
// in a jump, which clicks, nor so late that a word is over.
TEST(LevelMatch, GoesTwoThirdsOfTheWayInATenthOfASecond) {
  const Doubles in = SuddenlyLoud();
  for (const double share : {0.25, 4.0}) {
    Doubles out = in;
    for (size_t i = 2 * kRate; i < out.size(); ++i) out[i] *= share;
    const Doubles matched = Matched(in, out, 0);
    EXPECT_NEAR(GainAt(matched, out, 198), 0, 0.01);
    const double all = GainAt(matched, out, 280);
    EXPECT_GT(std::fabs(all), 6) << share;
    // In what is raised or lowered, not in dB.
    const auto way = [&](size_t ms) {
      const double gain = std::pow(10, GainAt(matched, out, 200 + ms / 10) / 20);
      return (gain - 1) / (std::pow(10, all / 20) - 1);
    };
    EXPECT_NEAR(way(50), 0.36, 0.1) << share;
    EXPECT_NEAR(way(100), 0.6, 0.1) << share;
  }
}

// 3 dB stay as they are, 12 dB more are made up for, the rest is the effect's own.
TEST(LevelMatch, HoldsTheLevelWithinThreeDecibelsAsFarAsItReaches) {
  const Doubles in = WhiteNoise(8 * kRate, 0.1, 1);
  for (const auto& [change, left] :
       {std::pair{2.0, 2.0}, {-2.5, -2.5}, {8, 3}, {-8, -3}, {14, 3}, {20, 8}, {-30, -18}}) {
    const Doubles out = Times(in, std::pow(10, change / 20));
    const Doubles matched = Matched(in, out, 0);
    EXPECT_NEAR(change + GainAt(matched, out, 799), left, 1) << change;
  }
}

// It does not know the effect yet: a first syllable is no reason to turn it up.
TEST(LevelMatch, TrustsTheEffectAtFirst) {
  const Doubles in = WhiteNoise(kRate, 0.1, 1);
  const Doubles out = Times(in, 0.25);
  const Doubles matched = Matched(in, out, 0);
  EXPECT_NEAR(GainAt(matched, out, 5), 0, 0.5);
  EXPECT_GT(GainAt(matched, out, 99), 3);
}

TEST(LevelMatch, GivesBothChannelsTheSameGain) {
  const Doubles noise = WhiteNoise(2 * kRate, 0.1, 1);
  desktop::LevelMatch match(kRate, 0);
  std::vector<float> left, right;
  double leftRaised = 0, rightRaised = 0;
  for (size_t at = 0; at < noise.size(); at += kBlock) {
    left.assign(&noise[at], &noise[at] + kBlock);
    right.assign(kBlock, 0.0F);
    const float* const heard[] = {left.data(), right.data()};
    match.Listen(heard, 2, kBlock);
    // The effect takes it to the right, and most of it away.
    right = left;
    for (float& sample : right) sample *= 0.1F;
    for (float& sample : left) sample *= 0.01F;
    const float leftBefore = left.back(), rightBefore = right.back();
    float* const rows[] = {left.data(), right.data()};
    match.Process(rows, 2, kBlock);
    leftRaised = left.back() / leftBefore;
    rightRaised = right.back() / rightBefore;
  }
  EXPECT_GT(rightRaised, 2);
  EXPECT_NEAR(leftRaised, rightRaised, 1e-5);
}

}  // namespace
