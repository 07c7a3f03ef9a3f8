#include "guards/click.h"

#include <gtest/gtest.h>

#include "guards/treatments.h"

namespace host {
namespace {

const GuardHit* ClickHit(const std::vector<GuardHit>& hits) { return Find(hits, Guard::kClick); }

Sound WithStep(Sound sound, double time, float step) {
  sound.samples[static_cast<size_t>(time * sound.rate) * static_cast<size_t>(sound.channels)] +=
      step;
  return sound;
}

// The prediction is off by some 0.003 in this noise, half of the time by less than two thirds of
// it.
TEST(ClickGuard, StandsOutFromItsSurroundings) {
  const Sound in = Noise(0.003, 2, 1);
  const auto hits = Check(in, WithStep(in, 1.2, 0.04F));
  ASSERT_NE(ClickHit(hits), nullptr);
  EXPECT_FALSE(ClickHit(hits)->fails);
  EXPECT_NEAR(*ClickHit(hits)->at, 1.2, 1e-4);
  EXPECT_EQ(ClickHit(hits)->channel, 0);
  EXPECT_EQ(ClickHit(Check(in, WithStep(in, 1.2, 0.012F))), nullptr);
}

TEST(ClickGuard, WhatIsSofterThan54DecibelsIsNotHeard) {
  Sound in = Noise(0.1, 2, 1);
  for (size_t i = 48000; i < in.samples.size(); ++i) in.samples[i] = 0;
  EXPECT_NE(ClickHit(Check(in, WithStep(in, 1.5, 0.0022F))), nullptr);
  EXPECT_EQ(ClickHit(Check(in, WithStep(in, 1.5, 0.0018F))), nullptr);
}

TEST(ClickGuard, ClicksOfTheInputAreItsOwn) {
  const Sound in = WithStep(Noise(0.003, 2, 1), 1.2, 0.1F);
  EXPECT_EQ(ClickHit(Check(in, Louder(Later(in, 0.1), -3))), nullptr);
  EXPECT_NE(ClickHit(Check(in, WithStep(in, 0.8, 0.1F))), nullptr);
}

TEST(ClickGuard, AClickGrowsWithAllAroundIt) {
  const Sound in = WithStep(Noise(0.003, 2, 1), 1.2, 0.05F);
  EXPECT_EQ(ClickHit(Check(in, Louder(in, 20))), nullptr);
}

// By ten times, and all around it by nothing; that it makes the place louder is no excuse.
TEST(ClickGuard, AClickThatAloneGrowsIsNew) {
  const Sound in = WithStep(Noise(0.003, 2, 1), 1.2, 0.02F);
  EXPECT_NE(ClickHit(Check(in, WithStep(in, 1.2, 0.18F))), nullptr);
  EXPECT_EQ(ClickHit(Check(in, WithStep(in, 1.2, 0.06F))), nullptr);
}

TEST(ClickGuard, AClickInSilenceIsTheInputsOwn) {
  const Sound in = WithStep(Cut(Noise(0.003, 2, 1), 1, 0.5), 1.2, 0.1F);
  EXPECT_EQ(ClickHit(Check(in, Later(in, 0.1))), nullptr);
}

// A quarter of a second later and no louder it is an echo of the input.
TEST(ClickGuard, AnEchoOfTheInputIsNoClick) {
  const Sound in = WithStep(Noise(0.003, 2, 1), 1.2, 0.1F);
  EXPECT_EQ(ClickHit(Check(in, WithStep(in, 1.44, 0.1F))), nullptr);
  EXPECT_NE(ClickHit(Check(in, WithStep(in, 1.44, 0.2F))), nullptr);
  EXPECT_NE(ClickHit(Check(in, WithStep(in, 1.55, 0.1F))), nullptr);
}

TEST(ClickGuard, WhatTheInputBeginsWithHasEchoesToo) {
  const Sound in = WithStep(Noise(0.003, 2, 1), 0.01, 0.1F);
  EXPECT_EQ(ClickHit(Check(in, WithStep(in, 0.15, 0.1F))), nullptr);
  EXPECT_NE(ClickHit(Check(in, WithStep(in, 0.15, 0.2F))), nullptr);
}

TEST(ClickGuard, CountsPlacesAndNamesTheChannel) {
  Sound in = Noise(0.003, 4, 1);
  in.channels = 2;
  Sound out = in;
  for (const size_t frame : {20000U, 40000U, 60000U}) out.samples[2 * frame + 1] += 0.1F;
  const auto hits = Check(in, out);
  ASSERT_NE(ClickHit(hits), nullptr);
  EXPECT_EQ(ClickHit(hits)->channel, 1);
  EXPECT_NEAR(*ClickHit(hits)->at, 20000.0 / 48000, 1e-4);
  EXPECT_EQ(ClickHit(hits)->text, "a click that the input does not have, the first in 3 places");
}

TEST(ClickGuard, NeedsADelayThatIsSure) {
  EXPECT_EQ(ClickHit(Check(Noise(0.003, 2, 1), WithStep(Noise(0.003, 2, 2), 1, 0.1F))), nullptr);
}

}  // namespace
}  // namespace host
