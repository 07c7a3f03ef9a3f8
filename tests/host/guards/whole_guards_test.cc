#include "guards/whole_guards.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "guards/sounds.h"

namespace host {
namespace {

TEST(LengthGuard, AllowsTheToleranceAndNotMore) {
  const Sound in = Sine(440, 0.5, 2);
  EXPECT_EQ(Find(Check(in, Sine(440, 0.5, 1.75)), Guard::kLength), nullptr);
  EXPECT_EQ(Find(Check(in, Sine(440, 0.5, 2.25)), Guard::kLength), nullptr);
  const auto shorter = Check(in, Sine(440, 0.5, 1.7));
  ASSERT_NE(Find(shorter, Guard::kLength), nullptr);
  EXPECT_TRUE(Find(shorter, Guard::kLength)->fails);
  EXPECT_DOUBLE_EQ(*Find(shorter, Guard::kLength)->at, 1.7);
  EXPECT_EQ(Find(shorter, Guard::kLength)->text, "1.70 s long, not 2.00 s give or take 0.25 s");
  const auto longer = Check(in, Sine(440, 0.5, 2.3));
  ASSERT_NE(Find(longer, Guard::kLength), nullptr);
  EXPECT_EQ(Find(longer, Guard::kLength)->at, std::nullopt);
}

TEST(LengthGuard, GoesByTheFactorOfTheRules) {
  GuardRules rules;
  rules.lengthFactor = 0.5;
  rules.lengthTolerance = 0.01;
  EXPECT_EQ(Find(Check(Sine(440, 0.5, 2), Sine(440, 0.5, 1), rules), Guard::kLength), nullptr);
  EXPECT_NE(Find(Check(Sine(440, 0.5, 2), Sine(440, 0.5, 2), rules), Guard::kLength), nullptr);
}

TEST(LengthGuard, ComparesSecondsWhateverTheRates) {
  EXPECT_EQ(Find(Check(Sine(440, 0.5, 2), Sine(440, 0.5, 2, 2, 8000)), Guard::kLength), nullptr);
}

TEST(LengthGuard, AnEmptyOutputIsTooShort) {
  EXPECT_NE(Find(Check(Sine(440, 0.5, 2), Silence(0)), Guard::kLength), nullptr);
  EXPECT_EQ(Find(CheckAlone(Silence(0)), Guard::kLength), nullptr);
}

TEST(NotFiniteGuard, NamesTheFirstPlaceAndCountsAll) {
  Sound out = Sine(440, 0.5, 1, 2);
  EXPECT_EQ(Find(CheckAlone(out), Guard::kNotFinite), nullptr);
  out.samples[2 * 12000 + 1] = std::numeric_limits<float>::infinity();
  out.samples[2 * 24000] = NAN;
  const auto hits = CheckAlone(out);
  const GuardHit* hit = Find(hits, Guard::kNotFinite);
  ASSERT_NE(hit, nullptr);
  EXPECT_TRUE(hit->fails);
  EXPECT_DOUBLE_EQ(*hit->at, 0.25);
  EXPECT_EQ(hit->channel, 1);
  EXPECT_EQ(hit->text, "2 samples that are not finite");
}

TEST(NotFiniteGuard, OnlyWarnsOfWhatTheInputHadToo) {
  Sound sound = Sine(440, 0.5, 1);
  sound.samples[7] = NAN;
  const auto hits = Check(sound, sound);
  const GuardHit* hit = Find(hits, Guard::kNotFinite);
  ASSERT_NE(hit, nullptr);
  EXPECT_FALSE(hit->fails);
}

}  // namespace
}  // namespace host
