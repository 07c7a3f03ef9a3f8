#include "desktop/aec/parts/echo_suppressor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "desktop/aec/parts/kalman_filter.h"
#include "support/allocation_count.h"
#include "support/talk.h"
#include "support/tone.h"

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = 160;
constexpr desktop::EchoSuppressor::Delay kDelay = {5, 8};

// What the filter and the suppressor make of a near end whose echo is 60 ms late, less the lag.
struct Cancelled {
  Samples filtered;
  Samples out;
  int blocksWithEcho = 0;
};

Cancelled Cancel(const Samples& far, const Samples& near) {
  desktop::KalmanFilter filter(kBlock, 32, 50);
  desktop::EchoSuppressor suppressor(kBlock);
  Cancelled result;
  std::vector<float> farBlock(kBlock);
  std::vector<float> echo(kBlock);
  std::vector<float> block(kBlock);
  for (size_t at = 0; at + kBlock <= near.size(); at += kBlock) {
    std::copy_n(&far[at], kBlock, farBlock.begin());
    std::copy_n(&near[at], kBlock, block.begin());
    filter.Process(farBlock.data(), block.data(), block.data());
    for (size_t i = 0; i < kBlock; ++i) echo[i] = near[at + i] - block[i];
    result.filtered.insert(result.filtered.end(), block.begin(), block.end());
    suppressor.Hear(farBlock.data());
    suppressor.Process(echo.data(), filter.Doubt(), kDelay, block.data());
    result.out.insert(result.out.end(), block.begin(), block.end());
    result.blocksWithEcho += suppressor.HasEcho() ? 1 : 0;
  }
  result.out.erase(result.out.begin(),
                   result.out.begin() + static_cast<ptrdiff_t>(suppressor.Lag()));
  return result;
}

Samples Clipped(Samples samples, int least, int most) {
  for (short& sample : samples) sample = static_cast<short>(std::clamp<int>(sample, least, most));
  return samples;
}

TEST(EchoSuppressor, TakesTheEchoOfALoudspeakerThatDistorts) {
  const Samples far = Talk(kRate, 6, 1);
  const Samples near = Sum(Echo(Clipped(far, -1500, 2500), kRate, 60), Hiss(kRate, 6, 2, -75));
  const Cancelled made = Cancel(far, near);
  const double filtered = LossDb(near, made.filtered, kRate, 2, 6);
  EXPECT_LT(filtered, 20);
  EXPECT_GT(LossDb(near, made.out, kRate, 2, 6), filtered + 10);
}

// A product of samples, of which a linear filter learns next to nothing.
TEST(EchoSuppressor, TakesEchoThatTheFilterDoesNotLearn) {
  const Samples far = Talk(kRate, 6, 3);
  Samples near = Echo(far, kRate, 60);
  for (size_t i = near.size() - 1; i > 0; --i) {
    const int fold = near[i] * near[i - 1] / 300;
    near[i] = static_cast<short>(std::clamp(fold, -20000, 20000));
  }
  const Cancelled made = Cancel(far, near);
  EXPECT_LT(LossDb(near, made.filtered, kRate, 2, 6), 6);
  EXPECT_GT(LossDb(near, made.out, kRate, 2, 6), 15);
}

// Bursts of 0.4 s of a tone.
Samples Bursts(double frequency, double amplitude) {
  Samples bursts = Tone(frequency, amplitude, kRate, 6 * kRate);
  for (size_t i = 0; i < bursts.size(); ++i) {
    if (i % 12800 >= 6400) bursts[i] = 0;
  }
  return bursts;
}

// A loudspeaker that plays nothing but the third harmonic of a tone, where the far end has nothing.
TEST(EchoSuppressor, TakesEchoAtFrequenciesThatTheFarEndDoesNotHave) {
  const Samples far = Bursts(1000, 8000);
  const Samples near = Sum(Echo(Bursts(3000, 2000), kRate, 60), Hiss(kRate, 6, 2, -75));
  const Cancelled made = Cancel(far, near);
  EXPECT_LT(LossDb(near, made.filtered, kRate, 2, 6), 1);
  EXPECT_GT(LossDb(near, made.out, kRate, 2, 6), 40);
}

TEST(EchoSuppressor, LeavesTheNearEndInDoubleTalk) {
  const Samples far = Talk(kRate, 8, 4);
  const Samples speech = Talk(kRate, 8, 5);
  const Samples near = Sum(Echo(Clipped(far, -2500, 3500), kRate, 60, 0), speech);
  const Cancelled made = Cancel(far, near);
  EXPECT_GT(SdrDb(speech, made.out, kRate, 1, 0), SdrDb(speech, near, kRate, 1, 0) + 4);
}

// Bursts of 0.2 s of noise. All that are made have the same choices but for so many in ten, which
// are those of a stranger.
Samples NoiseBursts(unsigned seed, double level, unsigned strangers) {
  std::minstd_rand choices(5);
  std::minstd_rand others(seed);
  Samples noise = Hiss(kRate, 8, seed, level);
  bool sounds = false;
  for (size_t i = 0; i < noise.size(); ++i) {
    if (i % 3200 == 0) {
      sounds = choices() % 2 == 0;
      if (others() % 10 < strangers) sounds = others() % 2 == 0;
    }
    if (!sounds) noise[i] = static_cast<short>(noise[i] / 100);
  }
  return noise;
}

// The signal to error ratio of a near end beside a far end of which the filter takes a part of the
// amplitude and leaves nothing.
double NearBeside(double taken, unsigned strangers) {
  const Samples far = NoiseBursts(7, -20, 0);
  const Samples near = NoiseBursts(8, -26, strangers);
  const std::vector<float> doubt(kBlock + 1);
  desktop::EchoSuppressor suppressor(kBlock);
  Samples out;
  for (size_t at = 0; at + kBlock <= near.size(); at += kBlock) {
    std::vector<float> block(&far[at], &far[at] + kBlock);
    suppressor.Hear(block.data());
    for (float& sample : block) sample *= static_cast<float>(taken);
    std::vector<float> left(&near[at], &near[at] + kBlock);
    suppressor.Process(block.data(), doubt, {0, 0}, left.data());
    out.insert(out.end(), left.begin(), left.end());
  }
  out.erase(out.begin(), out.begin() + static_cast<ptrdiff_t>(suppressor.Lag()));
  return SdrDb(near, out, kRate, 2, 0);
}

// That a near talker wavers with the far end now and then is chance where the filter knows it.
TEST(EchoSuppressor, TakesChanceForEchoOnlyWhereTheFilterTakesNothing) {
  EXPECT_LT(NearBeside(0, 7), 9.5);
  EXPECT_LT(NearBeside(0.2, 7), 9.5);
  EXPECT_GT(NearBeside(0.3, 7), 13.5);
  EXPECT_LT(NearBeside(0, 10), 11);
  EXPECT_GT(NearBeside(0.3, 10), 16);
}

TEST(EchoSuppressor, TakesWhatSurelyIsEchoThatTheFilterLeaves) {
  EXPECT_LT(NearBeside(0.3, 0), -15);
  EXPECT_LT(NearBeside(0.3, 1), -6);
}

TEST(EchoSuppressor, LeavesTheNearEndBesideTheNoiseOfAFarEnd) {
  const Samples far = Hiss(kRate, 6, 6, -60);
  const Samples speech = Sum(Talk(kRate, 6, 7), Hiss(kRate, 6, 8, -70));
  const Cancelled made = Cancel(far, speech);
  EXPECT_NEAR(LossDb(speech, made.out, kRate, 0, 6), 0, 0.2);
  EXPECT_LT(made.blocksWithEcho, 60);
}

// Of a far end that the microphone hears as it is, where the filter has found none of it and doubts
// each bin by that power.
Samples WhatIsLeftOf(const Samples& far, float doubted, desktop::EchoSuppressor& suppressor) {
  const std::vector<float> doubt(kBlock + 1, doubted);
  const std::vector<float> echo(kBlock);
  Samples out;
  for (size_t at = 0; at + kBlock <= far.size(); at += kBlock) {
    std::vector<float> block(&far[at], &far[at] + kBlock);
    suppressor.Hear(block.data());
    suppressor.Process(echo.data(), doubt, kDelay, block.data());
    out.insert(out.end(), block.begin(), block.end());
  }
  return out;
}

// By how many dB the suppressor lowers bursts of noise of which the filter expects so much power by
// bin as echo, with pauses so long that no noise is found in the room.
double LossOfBursts(float expected) {
  Samples far = Hiss(kRate, 6, 11, -10);
  for (size_t i = 0; i < far.size(); ++i) {
    if (i % 12800 >= 1600) far[i] = 0;
  }
  desktop::EchoSuppressor suppressor(kBlock);
  Samples out = WhatIsLeftOf(far, 2 * expected, suppressor);
  out.erase(out.begin(), out.begin() + static_cast<ptrdiff_t>(suppressor.Lag()));
  return LossDb(far, out, kRate, 2, 6);
}

// Where the filter doubts all that is left, nothing of it is to be understood.
TEST(EchoSuppressor, TakesWhatIsOnlyEchoDownBy50Decibels) {
  EXPECT_NEAR(LossOfBursts(5e11f), 50, 2);
}

// How sure a near talker is, from 3 dB below what is expected of the echo to 3 dB above, counts by
// degrees.
TEST(EchoSuppressor, TakesTheLessTheSurerANearTalkerIs) {
  const float power = 10362.0f * 10362.0f * kBlock;
  const auto loss = [&](float above) { return LossOfBursts(power * std::pow(10.0f, -above / 10)); };
  EXPECT_NEAR(loss(0), 46, 2);
  EXPECT_NEAR(loss(1), 31, 2);
  EXPECT_NEAR(loss(2), 19, 2);
  EXPECT_NEAR(loss(4), 6.5, 0.4);
}

// Nobody talks yet as far as is known: of a far end that sounds from the first block on only noise
// comes out, with nothing of the echo in it.
TEST(EchoSuppressor, LetsNoEchoThroughAtTheStart) {
  const Samples far = Hiss(kRate, 0.04, 13, -30);
  desktop::EchoSuppressor suppressor(kBlock);
  // A little more than is there: the mean power by bin in a window of the energy of a block.
  const double power = 1036.0 * 1036.0 * kBlock;
  const Samples out = WhatIsLeftOf(far, static_cast<float>(3 * power), suppressor);
  double product = 0;
  double energy = 0;
  for (size_t i = 0; i + suppressor.Lag() < out.size(); ++i) {
    product += static_cast<double>(far[i]) * out[i + suppressor.Lag()];
    energy += static_cast<double>(far[i]) * far[i];
  }
  EXPECT_LT(std::abs(product / energy), 0.01);
}

TEST(EchoSuppressor, PutsNoiseInThePlaceOfEcho) {
  const Samples far = Hiss(kRate, 8, 9, -25);
  Samples echo = Echo(Clipped(far, -1000, 1200), kRate, 60, 0);
  std::fill(echo.begin(), echo.begin() + 2 * kRate, short{0});
  Samples silent = far;
  std::fill(silent.begin(), silent.begin() + 2 * kRate, short{0});
  const Samples near = Sum(echo, Hiss(kRate, 8, 10, -60));
  const Cancelled made = Cancel(silent, near);
  EXPECT_GT(made.blocksWithEcho, 500);
  const double noise = LevelDb(made.out, kRate, 2.5, 3);
  EXPECT_LT(noise, -58);
  EXPECT_GT(noise, -75);
}

TEST(EchoSuppressor, AllocatesNothingPerBlock) {
  desktop::EchoSuppressor suppressor(kBlock);
  const std::vector<float> doubt(kBlock + 1);
  std::vector<float> block(kBlock, 100.0f);
  const size_t before = AllocationCount();
  for (int i = 0; i < 100; ++i) {
    suppressor.Hear(block.data());
    suppressor.Process(block.data(), doubt, kDelay, block.data());
  }
  EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
