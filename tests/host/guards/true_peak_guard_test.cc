#include "guards/true_peak_guard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "guards/treatments.h"

namespace host {
namespace {

// A sine at a quarter of the rate, its samples 3 dB below its crests, faded in and out so that the
// crests are all there is. The meter reads up to 0.2 dB more or 0.4 dB less.
Sound Crests(double decibels) {
  Sound sound = Silence(1);
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    const double time = static_cast<double>(i) / 48000;
    const double fade = std::min({1.0, time / 0.25, (1 - time) / 0.25});
    sound.samples[i] = static_cast<float>(fade * std::pow(10, decibels / 20) *
                                          std::sin(M_PI / 4 + M_PI / 2 * static_cast<double>(i)));
  }
  return sound;
}

const GuardHit* TruePeakHit(const std::vector<GuardHit>& hits) {
  return Find(hits, Guard::kTruePeak);
}

// Samples of that size in one place, of signs that make as much between the middle two as is
// possible: 5.8 dB more.
Sound Steep(float size) {
  Sound sound = Silence(1);
  for (size_t i = 0; i < 12; ++i) {
    const bool up = i < 6 ? i % 2 == 1 : i % 2 == 0;
    sound.samples[20000 + i] = up ? size : -size;
  }
  return sound;
}

TEST(TruePeakGuard, BeginsAtFullScaleBetweenTheSamples) {
  const Sound in = Crests(-6);
  EXPECT_EQ(TruePeakHit(Check(in, Crests(-0.3))), nullptr);
  const auto hits = Check(in, Crests(0.6));
  ASSERT_NE(TruePeakHit(hits), nullptr);
  EXPECT_FALSE(TruePeakHit(hits)->fails);
  EXPECT_EQ(TruePeakHit(hits)->channel, 0);
  // Where the fade gets there, which the meter's error puts off or brings forward.
  EXPECT_NEAR(*TruePeakHit(hits)->at, 0.25 * std::pow(10, -0.6 / 20), 0.012);
}

// A crest between samples, and one at a sample, in a sound that is far below.
TEST(TruePeakGuard, SaysWhereTheCrestIs) {
  for (const size_t frame : {10U, 4799U, 4800U, 4803U, 30000U}) {
    Sound between = Silence(1, 2);
    between.samples[2 * frame + 1] = between.samples[2 * frame + 3] = 0.9F;
    const auto hits = CheckAlone(between);
    ASSERT_NE(TruePeakHit(hits), nullptr) << frame;
    EXPECT_EQ(TruePeakHit(hits)->channel, 1);
    EXPECT_NEAR(*TruePeakHit(hits)->at, static_cast<double>(frame) / 48000, 1.5 / 48000) << frame;
    Sound at = Silence(1);
    at.samples[frame] = -1.1F;
    EXPECT_DOUBLE_EQ(*TruePeakHit(CheckAlone(at))->at, static_cast<double>(frame) / 48000);
  }
}

TEST(TruePeakGuard, AllowsADecibelMoreThanTheInput) {
  EXPECT_EQ(TruePeakHit(Check(Crests(2), Crests(2.9))), nullptr);
  EXPECT_NE(TruePeakHit(Check(Crests(2), Crests(3.1))), nullptr);
}

TEST(TruePeakGuard, GoesByTheCrestsOfAnInputOfSoftSamples) {
  const Sound in = Steep(0.5F);
  EXPECT_EQ(TruePeakHit(CheckAlone(in)), nullptr);
  EXPECT_NE(TruePeakHit(CheckAlone(Steep(0.55F))), nullptr);
  EXPECT_EQ(TruePeakHit(Check(in, Steep(0.55F))), nullptr);
  EXPECT_NE(TruePeakHit(Check(in, Steep(0.6F))), nullptr);
}

// Which are upside down against each other, so that nothing is in their mean.
TEST(TruePeakGuard, GoesByTheCrestsOfEachChannelOfTheInput) {
  const Sound mono = Crests(2);
  Sound in = Silence(1, 2);
  for (size_t i = 0; i < mono.samples.size(); ++i) {
    in.samples[2 * i] = mono.samples[i];
    in.samples[2 * i + 1] = -mono.samples[i];
  }
  EXPECT_EQ(TruePeakHit(Check(in, Crests(2.5))), nullptr);
}

// Of a loud and a soft channel the loud one tells, wherever it is, once the channels are mixed;
// while there are as many as before, each goes by its own.
TEST(TruePeakGuard, GoesByTheLoudestChannelWhereTheyAreMixed) {
  const Sound mono = Crests(2);
  Sound in = Silence(1, 2);
  for (size_t i = 0; i < mono.samples.size(); ++i) in.samples[2 * i + 1] = mono.samples[i];
  EXPECT_EQ(TruePeakHit(Check(in, Crests(2.5))), nullptr);
  EXPECT_NE(TruePeakHit(Check(in, Crests(3.5))), nullptr);
  EXPECT_NE(TruePeakHit(Check(in, Swapped(in))), nullptr);
}

TEST(TruePeakGuard, NeedsNoInput) {
  EXPECT_NE(TruePeakHit(CheckAlone(Crests(1))), nullptr);
  EXPECT_EQ(TruePeakHit(CheckAlone(Crests(-1))), nullptr);
}

TEST(TruePeakGuard, JudgesFloatsBeyondFullScale) {
  const Sound in = Speech(1);
  EXPECT_NE(TruePeakHit(Check(in, Louder(in, 30))), nullptr);
}

}  // namespace
}  // namespace host
