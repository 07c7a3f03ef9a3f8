#include "guards/fact_guards.h"

#include <gtest/gtest.h>

#include <cmath>

#include "guards/sounds.h"

namespace host {
namespace {

std::vector<GuardHit> CheckRun(const RunFacts& facts) {
  return CheckGuards({.rules = {}, .facts = facts});
}

TEST(FactGuards, NothingKnownHitsNothing) { EXPECT_EQ(Names(CheckRun({})), ""); }

TEST(FactGuards, AppendedWhenTheFileHeldSomethingBefore) {
  const auto hits = CheckRun({.keptBefore = 1.5});
  ASSERT_EQ(Names(hits), "appended");
  EXPECT_EQ(hits[0].at, 1.5);
  EXPECT_EQ(hits[0].text, "appended to 1.50 s that the file held before");
}

TEST(FactGuards, AnArgumentThatIsIgnoredHitsOnlyIfItsValueDiffers) {
  EXPECT_EQ(Names(CheckRun({.ignoredArguments = {{"brate", "16000", "16000"}}})), "");
  const auto hits =
      CheckRun({.ignoredArguments = {
                    {"fs", "8000", "8000"}, {"brate", "64000", "16000"}, {"mode", "2", "1"}}});
  ASSERT_EQ(Names(hits), "argument_unused");
  EXPECT_EQ(hits[0].text, "brate = 64000 was not used, but 16000 (and 1 more)");
}

TEST(FactGuards, AnInputMayEndWithinItsToleranceOfTheLastRead) {
  EXPECT_EQ(Names(CheckRun({.inputs = {{"in.wav", 9.75, 10}}})), "");
  const auto hits = CheckRun({.inputs = {{"far.wav", 10, 10}, {"in.wav", 9.7, 10}}});
  ASSERT_EQ(Names(hits), "input_unread");
  EXPECT_EQ(hits[0].at, std::nullopt);
  EXPECT_EQ(hits[0].text, "of in.wav only 9.70 s of 10.00 s were read");
}

TEST(FactGuards, WhatHasNoDurationIsCountedInBytes) {
  EXPECT_EQ(Names(CheckRun({.inputs = {{"in.aac", 8976, 10000, true}}})), "");
  const auto hits = CheckRun({.inputs = {{"in.aac", 8975, 10000, true}}});
  ASSERT_EQ(Names(hits), "input_unread");
  EXPECT_EQ(hits[0].text, "of in.aac only 8975 bytes of 10.0 kB were read");
  const auto appended = CheckRun({.keptBytes = 1});
  ASSERT_EQ(Names(appended), "appended");
  EXPECT_EQ(appended[0].at, std::nullopt);
  EXPECT_EQ(appended[0].text, "appended to 1 byte that the file held before");
}

TEST(FactGuards, WhatTheEngineSaidIsRepeated) {
  const auto hits = CheckRun({.engineLines = {"no such mode", "again no such mode"}});
  ASSERT_EQ(Names(hits), "engine_said");
  EXPECT_EQ(hits[0].text, "no such mode (and 1 more)");
}

TEST(FactGuards, OffIsOffAndFailFails) {
  const RunFacts facts{.keptBefore = 1, .engineLines = {"no"}};
  GuardRules rules;
  rules[Guard::kAppended] = GuardAction::kOff;
  rules[Guard::kEngineSaid] = GuardAction::kFail;
  EXPECT_EQ(Names(CheckGuards({.rules = rules, .facts = facts})), "ENGINE_SAID");
}

TEST(FactGuards, TimesCountFromTheStartOfTheFile) {
  Sound sound = Sine(440, 0.5, 1);
  sound.samples[4800] = NAN;
  const Signal out = sound.AsSignal();
  const auto hits = CheckGuards({.output = &out, .rules = {}, .facts = {.keptBefore = 2}});
  ASSERT_NE(Find(hits, Guard::kNotFinite), nullptr);
  EXPECT_DOUBLE_EQ(*Find(hits, Guard::kNotFinite)->at, 2.1);
}

}  // namespace
}  // namespace host
