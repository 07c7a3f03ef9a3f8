// Signals that leave nothing to compare: the guards answer, and say nothing that is not so.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "guards/treatments.h"

namespace host {
namespace {

// No guard but length may hit what is too short or silent on both sides.
TEST(Guards, NothingIsSaidOfNothing) {
  Sound one = Silence(0);
  one.samples = {0.5F};
  for (const Sound& sound : {Silence(0), one, Silence(1), Silence(0.01, 2), Silence(3, 8, 8000)}) {
    EXPECT_EQ(Names(Check(sound, sound)), "") << sound.samples.size();
  }
}

TEST(Guards, AnyPairOfOddSignalsIsTaken) {
  Sound one = Silence(0);
  one.samples = {0.5F};
  Sound odd = Silence(1, 2);
  for (float& sample : odd.samples) sample = std::numeric_limits<float>::quiet_NaN();
  Sound huge = Noise(0.1, 1, 1);
  for (float& sample : huge.samples) sample *= std::numeric_limits<float>::max();
  const std::vector<Sound> sounds = {Silence(0),
                                     one,
                                     Silence(1, 3, 44100),
                                     odd,
                                     huge,
                                     Noise(0.1, 0.02, 1),
                                     Silence(0.5, 1, 1),
                                     Sine(1000, 0.5, 1, 2, 192000)};
  for (const Sound& in : sounds) {
    for (const Sound& out : sounds) {
      const auto hits = Check(in, out);
      for (const GuardHit& hit : hits) EXPECT_FALSE(hit.text.empty());
      EXPECT_EQ(Find(hits, Guard::kDropout), nullptr);
    }
  }
}

TEST(Guards, WhatIsNotFiniteIsSaidOnce) {
  Sound out = Music(2);
  Sound in = out;
  for (size_t i = 5000; i < 6000; ++i) out.samples[i] = std::numeric_limits<float>::quiet_NaN();
  const auto hits = Check(in, out);
  ASSERT_NE(Find(hits, Guard::kNotFinite), nullptr);
  EXPECT_EQ(Find(hits, Guard::kLevel), nullptr);
  EXPECT_EQ(Find(hits, Guard::kDc), nullptr);
}

TEST(Guards, SignalsOfOtherRatesAndChannelsAreCompared) {
  const Sound in = Music(3, 2, 44100);
  const Sound out = Music(3, 1, 16000);
  EXPECT_EQ(Names(Check(in, out)), "");
  EXPECT_EQ(Names(Check(out, in)), "");
}

// No more memory than a fraction of what the signals take, and all of them are looked at.
TEST(Guards, TenMinutesAreLookedAtToTheEnd) {
  Sound in = Noise(0.1, 10, 1);
  in.rate = 8000;
  const std::vector<float> part = in.samples;
  while (in.AsSignal().Seconds() < 600)
    in.samples.insert(in.samples.end(), part.begin(), part.end() - 1777);
  const auto hits = Check(in, Cut(in, 598, 0.005));
  EXPECT_EQ(Names(hits), "DROPOUT");
  EXPECT_DOUBLE_EQ(*hits[0].at, 598);
}

TEST(Guards, EachCanBeSwitchedOff) {
  const Sound in = Music(2);
  Sound out = Cut(Inverted(Swapped(Louder(in, 20))), 1.1, 0.01);
  for (float& sample : out.samples) sample += 0.1F;
  out.samples[70000] = std::numeric_limits<float>::infinity();
  out.samples.resize(out.samples.size() * 2 / 3);
  GuardRules rules;
  for (size_t i = 0; i < kGuards; ++i) rules[static_cast<Guard>(i)] = GuardAction::kOff;
  EXPECT_NE(Names(Check(in, out)), "");
  EXPECT_EQ(Names(Check(in, out, rules)), "");
}

}  // namespace
}  // namespace host
