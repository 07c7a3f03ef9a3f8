#include "compare/comparable.h"

#include <gmock/gmock.h>

#include "base/usage_error.h"
#include "synthetic_results.h"

namespace host {
namespace {

using testing::HasSubstr;

std::string Fault(const Json& a, const Json& b) {
  try {
    CheckComparable(SetOf(a, "A"), SetOf(b, "B"));
  } catch (const UsageError& error) {
    EXPECT_THAT(error.message, testing::StartsWith("not comparable: "));
    return error.message;
  }
  return "";
}

TEST(CheckComparable, TakesTheSameSuiteFromAnotherFolder) {
  Json a = OneFigureEach({1, 2});
  Json b = a;
  b["suite"] = "/elsewhere/calls.toml";
  EXPECT_EQ(Fault(a, b), "");
}

TEST(CheckComparable, RefusesAnotherSuite) {
  const Json a = OneFigureEach({1});
  Json b = a;
  b["suite"] = "music.toml";
  EXPECT_THAT(Fault(a, b), HasSubstr("other suites: calls.toml in A, music.toml in B"));
  b["suite"] = Json();
  EXPECT_THAT(Fault(a, b), HasSubstr("the routines of the catalogue in B"));
}

TEST(CheckComparable, RefusesAnotherVersionOfAMeasure) {
  const SyntheticFigure two = {.version = 2};
  EXPECT_THAT(Fault(OneFigureEach({1}), OneFigureEach({1}, two)),
              HasSubstr("the measure my_sdr is of version 1 in A and of version 2 in B"));
}

TEST(CheckComparable, RefusesAMeasureThatIsBetterInTheOtherDirection) {
  const SyntheticFigure lower = {.better = "lower"};
  EXPECT_THAT(Fault(OneFigureEach({1}), OneFigureEach({1}, lower)),
              HasSubstr("of my_sdr, better is \"higher\" in A and \"lower\" in B"));
}

TEST(CheckComparable, RefusesAnotherRoutineOrOtherWordsUnderOneId) {
  const Json a = OneFigureEach({1});
  Json b = a;
  b["cases"][0]["routine"] = "TestDrc";
  EXPECT_THAT(Fault(a, b),
              HasSubstr("the case c0 is TestZUAec near.wav in A and TestDrc near.wav"));
  b = a;
  b["cases"][0]["arguments"] = {"far.wav"};
  EXPECT_THAT(Fault(a, b), HasSubstr("TestZUAec far.wav in B"));
}

TEST(CheckComparable, RefusesWhatHasNoCaseInCommon) {
  Json b = OneFigureEach({1});
  b["cases"][0]["id"] = "other";
  EXPECT_THAT(Fault(OneFigureEach({1}), b), HasSubstr("no case is in both A and B"));
}

TEST(CheckComparable, TakesTwoThatHaveNoCaseAtAll) {
  EXPECT_EQ(Fault(ResultsJson({}), ResultsJson({})), "");
  EXPECT_THAT(Fault(OneFigureEach({1}), ResultsJson({})), HasSubstr("no case is in both A and B"));
}

Json Report(const std::string& routine, const std::string& word) {
  return {{"schema_version", 3}, {"routine", routine},       {"arguments", {word}},
          {"verdict", "pass"},   {"figures", Json::array()}, {"outputs", Json::array()}};
}

TEST(CheckComparable, TakesTwoReportsOfOneRoutineWhateverTheirFilesAreCalled) {
  EXPECT_EQ(Fault(Report("TestDrc", "a.wav"), Report("TestDrc", "b.wav")), "");
  EXPECT_THAT(Fault(Report("TestDrc", "a.wav"), Report("TestEq", "a.wav")),
              HasSubstr("TestDrc has run for A, TestEq for B"));
}

TEST(CheckComparable, RefusesAReportBesideASuite) {
  EXPECT_THAT(Fault(Report("TestDrc", "a.wav"), OneFigureEach({1})),
              HasSubstr("A is the report of one run, B holds the results of a suite"));
}

}  // namespace
}  // namespace host
