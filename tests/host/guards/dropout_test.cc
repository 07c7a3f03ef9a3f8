#include "guards/dropout.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "guards/treatments.h"

namespace host {
namespace {

const GuardHit* DropoutHit(const std::vector<GuardHit>& hits) {
  return Find(hits, Guard::kDropout);
}

TEST(DropoutGuard, BeginsAtTwoMilliseconds) {
  const Sound in = Noise(0.1, 2, 1);
  const auto hits = Check(in, Cut(in, 1, 0.0021));
  ASSERT_NE(DropoutHit(hits), nullptr);
  EXPECT_TRUE(DropoutHit(hits)->fails);
  EXPECT_DOUBLE_EQ(*DropoutHit(hits)->at, 1);
  EXPECT_EQ(DropoutHit(hits)->text, "zeros for 2.1 ms where the input has signal");
  EXPECT_EQ(DropoutHit(Check(in, Cut(in, 1, 0.0019))), nullptr);
}

// 96 samples are 2 ms; a run that is as long counts wherever it lies, also beside another one.
TEST(DropoutGuard, ARunCountsWhereverItLies) {
  const Sound in = Noise(0.1, 1, 1);
  for (size_t first = 24000; first < 24200; first += 7) {
    Sound out = in;
    std::fill_n(out.samples.begin() + static_cast<int64_t>(first), 95, 0.0F);
    EXPECT_EQ(DropoutHit(Check(in, out)), nullptr) << first;
    std::fill_n(out.samples.begin() + static_cast<int64_t>(first) + 96, 96, 0.0F);
    const auto hits = Check(in, out);
    ASSERT_NE(DropoutHit(hits), nullptr) << first;
    EXPECT_DOUBLE_EQ(*DropoutHit(hits)->at, static_cast<double>(first + 96) / 48000);
  }
}

// The sound is surveyed in blocks of 4800 samples, and a run may lie in two of them.
TEST(DropoutGuard, ARunCountsAcrossBlocks) {
  const Sound in = Noise(0.1, 1, 1);
  for (const int64_t before : {0, 1, 47, 48, 49, 95, 96}) {
    const int64_t first = 24000 - before;
    Sound out = in;
    std::fill_n(out.samples.begin() + first, 95, 0.0F);
    EXPECT_EQ(DropoutHit(Check(in, out)), nullptr) << before;
    std::fill_n(out.samples.begin() + first, 96, 0.0F);
    const auto hits = Check(in, out);
    ASSERT_NE(DropoutHit(hits), nullptr) << before;
    EXPECT_DOUBLE_EQ(*DropoutHit(hits)->at, static_cast<double>(first) / 48000);
  }
}

TEST(DropoutGuard, CountsThePlacesAndNamesTheFirst) {
  Sound in = Noise(0.1, 2, 1);
  in.channels = 2;
  const auto hits = Check(in, Cut(Cut(in, 0.7, 0.01), 0.5, 0.01));
  ASSERT_NE(DropoutHit(hits), nullptr);
  EXPECT_NEAR(*DropoutHit(hits)->at, 0.5, 1e-4);
  EXPECT_EQ(DropoutHit(hits)->text,
            "zeros for 10.0 ms where the input has signal, the first of 4 places");
}

// The input is silent at first, so that the start of the zeros alone says nothing.
TEST(DropoutGuard, ALongRunIsLookedAtAllAlong) {
  Sound in = Noise(0.1, 4, 1);
  std::fill_n(in.samples.begin() + 48000, 72000, 0.0F);
  Sound out = Cut(in, 1, 2);
  const auto hits = Check(in, out);
  ASSERT_NE(DropoutHit(hits), nullptr);
  EXPECT_DOUBLE_EQ(*DropoutHit(hits)->at, 1);
  // For a moment only, 50 ms of signal in the midst of what is zeros anyhow.
  Sound brief = Silence(4);
  const Sound noise = Noise(0.1, 4, 1);
  std::copy_n(noise.samples.begin(), 48000, brief.samples.begin());
  std::copy_n(noise.samples.begin(), 2400, brief.samples.begin() + 96000);
  EXPECT_NE(DropoutHit(Check(brief, Cut(brief, 1, 3))), nullptr);
}

TEST(DropoutGuard, ZerosOfTheInputAreItsOwn) {
  const Sound in = Cut(Noise(0.1, 2, 1), 1, 0.003);
  EXPECT_EQ(DropoutHit(Check(in, in)), nullptr);
  EXPECT_EQ(DropoutHit(Check(in, Louder(Later(in, 0.05), 3))), nullptr);
}

TEST(DropoutGuard, WhatIs15DecibelsSofterMayBeGatedAway) {
  const Sound loud = Noise(0.1, 2, 1);
  for (const double softer : {-13.0, -17.0}) {
    Sound in = Louder(loud, softer);
    std::copy_n(loud.samples.begin(), 48000, in.samples.begin());
    EXPECT_EQ(DropoutHit(Check(in, Cut(in, 1.4, 0.1))) != nullptr, softer > -15) << softer;
  }
}

TEST(DropoutGuard, PaddingAtTheEndsIsAllowed) {
  const Sound in = Noise(0.1, 2, 1);
  EXPECT_EQ(DropoutHit(Check(in, Cut(in, 0, 0.1))), nullptr);
  EXPECT_EQ(DropoutHit(Check(in, Cut(in, 1.9, 0.1))), nullptr);
  EXPECT_NE(DropoutHit(Check(in, Cut(in, 0, 0.15))), nullptr);
  EXPECT_NE(DropoutHit(Check(in, Cut(in, 1.85, 0.15))), nullptr);
}

TEST(DropoutGuard, IsFoundThroughADelayAndAtAnotherRate) {
  const Sound in = Noise(0.1, 2, 1);
  const auto hits = Check(in, Cut(Later(in, 0.4), 1, 0.005));
  ASSERT_NE(DropoutHit(hits), nullptr);
  EXPECT_DOUBLE_EQ(*DropoutHit(hits)->at, 1);
  Sound half = Silence(2, 1, 24000);
  for (size_t i = 0; i < half.samples.size(); ++i) half.samples[i] = in.samples[2 * i];
  EXPECT_NE(DropoutHit(Check(in, Cut(half, 1, 0.005))), nullptr);
}

// Without a delay that is sure, zeros are wrong only where the input has signal at every delay.
TEST(DropoutGuard, AnUnknownDelayHitsOnlyWhatIsWrongAtAnyDelay) {
  const Sound in = Noise(0.1, 4, 1);
  const Sound other = Noise(0.1, 4, 2);
  EXPECT_NE(DropoutHit(Check(in, Cut(other, 2, 0.005))), nullptr);
  EXPECT_EQ(DropoutHit(Check(Cut(in, 1.5, 0.2), Cut(other, 2, 0.005))), nullptr);
}

TEST(DropoutGuard, RowsThatAreNotComparableAreLeftOut) {
  const Sound in = Noise(0.1, 2, 1);
  GuardRules rules;
  rules.comparable = false;
  EXPECT_EQ(DropoutHit(Check(in, Cut(in, 1, 0.05), rules)), nullptr);
}

}  // namespace
}  // namespace host
