// What the verdict on one measure is.

#include "compare/judge_measure.h"

#include <gmock/gmock.h>

#include "synthetic_results.h"

namespace host {
namespace {

const SyntheticFigure kHigher = {};

// 30 values around 10, and the same with this shift and some noise of their own.
std::vector<double> Base() {
  std::vector<double> values;
  for (int i = 0; i < 30; ++i) values.push_back(10 + i % 7);
  return values;
}

std::vector<double> Shifted(double shift, double noise, size_t count = 30) {
  std::vector<double> values = Base();
  values.resize(count, 10);
  for (size_t i = 0; i < count; ++i) {
    values[i] += shift + noise * (i % 2 == 0 ? 1 : -1) * (1 + 0.01 * static_cast<double>(i));
  }
  return values;
}

Change VerdictOf(const std::vector<double>& b, double margin = 0,
                 const SyntheticFigure& like = kHigher) {
  std::vector<double> a = Base();
  a.resize(b.size(), 10);
  return CompareValues(a, b, like, {.margins = {{"my_sdr", margin}}}).verdict;
}

TEST(JudgeMeasure, LessIsWorseAndMoreIsBetterWhereHigherIsBetter) {
  EXPECT_EQ(VerdictOf(Shifted(-1, 0.5)), Change::kWorse);
  EXPECT_EQ(VerdictOf(Shifted(1, 0.5)), Change::kBetter);
  EXPECT_EQ(VerdictOf(Shifted(0.01, 0.5)), Change::kUndecided);
}

TEST(JudgeMeasure, IsTurnedWhereLowerIsBetter) {
  const SyntheticFigure lower = {.better = "lower"};
  EXPECT_EQ(VerdictOf(Shifted(-1, 0.5), 0, lower), Change::kBetter);
  EXPECT_EQ(VerdictOf(Shifted(1, 0.5), 0, lower), Change::kWorse);
  const MeasureComparison comparison = CompareValues(Base(), Shifted(1, 0.5), lower);
  // The difference itself is B - A.
  EXPECT_GT(comparison.difference, 0);
  EXPECT_LT(comparison.low, comparison.difference);
  EXPECT_GT(comparison.high, comparison.difference);
  EXPECT_GT(comparison.losses, comparison.wins);
}

TEST(JudgeMeasure, TheMarginIsWhatTheIntervalMustLeaveOrStayIn) {
  EXPECT_EQ(VerdictOf(Shifted(-1, 0.5), 0.7), Change::kWorse);
  EXPECT_EQ(VerdictOf(Shifted(-1, 0.5), 1), Change::kUndecided);
  EXPECT_EQ(VerdictOf(Shifted(-1, 0.5), 2), Change::kSame);
  EXPECT_EQ(VerdictOf(Shifted(1, 0.5), 0.7), Change::kBetter);
  EXPECT_EQ(VerdictOf(Shifted(1, 0.5), 2), Change::kSame);
}

TEST(JudgeMeasure, EitherSideIsAChangeWhereNeitherIsBetter) {
  const SyntheticFigure none = {.better = "none"};
  EXPECT_EQ(VerdictOf(Shifted(-1, 0.5), 0.5, none), Change::kChanged);
  EXPECT_EQ(VerdictOf(Shifted(1, 0.5), 0.5, none), Change::kChanged);
  EXPECT_EQ(VerdictOf(Shifted(0.1, 0.5), 0.5, none), Change::kSame);
  EXPECT_EQ(VerdictOf(Shifted(0.5, 0.5), 0.5, none), Change::kUndecided);
  EXPECT_TRUE(IsWorse(Change::kChanged));
}

TEST(JudgeMeasure, AllDifferencesEqualAreTheInterval) {
  for (const size_t count : {1U, 3U, 8U, 30U}) {
    std::vector<double> a(count);
    for (size_t i = 0; i < count; ++i) a[i] = 0.1 * static_cast<double>(i);
    std::vector<double> b = a;
    for (double& value : b) value += -0.3;
    const MeasureComparison comparison = CompareValues(a, b);
    EXPECT_TRUE(comparison.interval);
    EXPECT_NEAR(comparison.low, -0.3, 1e-12);
    EXPECT_EQ(comparison.low, comparison.high);
    EXPECT_EQ(comparison.verdict, Change::kWorse) << count;
    EXPECT_TRUE(comparison.holds);
    EXPECT_EQ(CompareValues(a, a).verdict, Change::kSame) << count;
  }
}

// The last digits of two computations of the same are no difference.
TEST(JudgeMeasure, RoundingIsNoDifference) {
  const std::vector<double> a(10, 0.3);
  const MeasureComparison comparison = CompareValues(a, std::vector<double>(10, 0.1 + 0.2));
  EXPECT_EQ(comparison.verdict, Change::kSame);
  EXPECT_EQ(comparison.low, 0);
}

TEST(JudgeMeasure, FewerThanEightCasesHaveNoIntervalAndDecideOnlyTogether) {
  const MeasureComparison mixed =
      CompareValues(std::vector<double>(7, 1), {0.5, 0.4, 0.3, 0.5, 0.6, 0.5, 0.95}, kHigher,
                    {.margins = {{"my_sdr", 0.1}}});
  EXPECT_FALSE(mixed.interval);
  EXPECT_EQ(mixed.verdict, Change::kUndecided);
  EXPECT_EQ(mixed.more, 1U);
  const std::vector<double> allWorse = {0.5, 0.4, 0.3, 0.5, 0.6, 0.5, 0.85};
  const std::vector<double> one(7, 1);
  const CompareRules rules = {.margins = {{"my_sdr", 0.1}}};
  EXPECT_EQ(CompareValues(one, allWorse, kHigher, rules).verdict, Change::kWorse);
  EXPECT_EQ(CompareValues(allWorse, one, kHigher, rules).verdict, Change::kBetter);
  EXPECT_EQ(CompareValues(one, {1.05, 0.95, 1, 1, 1, 1, 1}, kHigher, rules).verdict,
            Change::kUndecided);
  // Each on its side is a change where neither side is better.
  const SyntheticFigure none = {.better = "none"};
  EXPECT_EQ(CompareValues(one, {0.5, 1.5, 0.5, 1.5, 0.5, 1.5, 0.5}, none, rules).verdict,
            Change::kChanged);
  EXPECT_EQ(CompareValues(one, {0.5, 1.5, 0.5, 1.5, 0.5, 1.5, 1}, none, rules).verdict,
            Change::kUndecided);
}

TEST(JudgeMeasure, EightCasesHaveAnInterval) {
  const std::vector<double> b = {0.5, 0.4, 0.3, 0.5, 0.6, 0.5, 0.85, 0.4};
  const MeasureComparison comparison = CompareValues(std::vector<double>(8, 1), b);
  EXPECT_TRUE(comparison.interval);
  EXPECT_EQ(comparison.verdict, Change::kWorse);
}

// 40 cases of 4 recordings are 4 independent things.
TEST(JudgeMeasure, ClustersAreTheThingsThatCount) {
  Json a = OneFigureEach(std::vector<double>(40, 1));
  std::vector<double> values;
  for (int i = 0; i < 40; ++i) values.push_back(i % 4 == 0 ? 1.5 : 0.5 + 0.01 * (i % 9));
  Json b = OneFigureEach(values);
  EXPECT_TRUE(CompareResults(SetOf(a), SetOf(b), {}).measures[0].interval);
  for (Json* const set : {&a, &b}) {
    for (size_t i = 0; i < 40; ++i) (*set)["cases"][i]["cluster"] = "s" + std::to_string(i % 4);
  }
  const MeasureComparison few = CompareResults(SetOf(a), SetOf(b), {}).measures[0];
  EXPECT_FALSE(few.interval);
  EXPECT_EQ(few.clusters, 4U);
  EXPECT_EQ(few.count, 40U);
  EXPECT_EQ(few.verdict, Change::kUndecided);
  EXPECT_EQ(few.more, 4U);
  // Wilcoxon's p is that of their means, of which the largest is on the other side: of the 16 ways
  // to give four ranks signs, seven have a sum of at most 4 on one side.
  EXPECT_NEAR(few.p, 14.0 / 16, 1e-12);
}

// One large cluster gains least, three small ones lose more: by means two of 16 ways to give signs
// are as far to one side, by sums 14 would be.
TEST(JudgeMeasure, RanksClustersByTheirMeans) {
  Json a = OneFigureEach(std::vector<double>(44, 1));
  std::vector<double> values;
  for (size_t i = 0; i < 44; ++i)
    values.push_back(i < 20 ? 1.3 : 0.6 - 0.1 * static_cast<double>(i % 3));
  Json b = OneFigureEach(values);
  for (Json* const set : {&a, &b}) {
    for (size_t i = 0; i < 44; ++i) {
      (*set)["cases"][i]["cluster"] = i < 20 ? "large" : "s" + std::to_string(i % 3);
    }
  }
  EXPECT_NEAR(CompareResults(SetOf(a), SetOf(b), {}).measures[0].p, 2 * 2.0 / 16, 1e-12);
}

// 10 recordings of 8 cases each: the interval is as wide as 10 things make it.
TEST(JudgeMeasure, TheIntervalOfClustersIsThatOfTheirNumber) {
  std::vector<double> values;
  for (size_t i = 0; i < 80; ++i) values.push_back(std::sin(static_cast<double>(i % 10) * 2.3));
  Json a = OneFigureEach(std::vector<double>(80, 0));
  Json b = OneFigureEach(values);
  const MeasureComparison single = CompareResults(SetOf(a), SetOf(b), {}).measures[0];
  for (Json* const set : {&a, &b}) {
    for (size_t i = 0; i < 80; ++i) (*set)["cases"][i]["cluster"] = "s" + std::to_string(i % 10);
  }
  const MeasureComparison together = CompareResults(SetOf(a), SetOf(b), {}).measures[0];
  EXPECT_NEAR((together.high - together.low) / (single.high - single.low), std::sqrt(8), 0.25);
}

TEST(JudgeMeasure, NamesTheWorstCase) {
  std::vector<double> b = Base();
  b[17] -= 3;
  b[4] += 5;
  MeasureComparison comparison = CompareValues(Base(), b);
  EXPECT_EQ(comparison.worstCase, "c17");
  EXPECT_EQ(comparison.wins, 1U);
  EXPECT_EQ(comparison.losses, 1U);
  comparison = CompareValues(Base(), b, {.better = "lower"});
  EXPECT_EQ(comparison.worstCase, "c4");
  comparison = CompareValues(Base(), b, {.better = "none"});
  EXPECT_EQ(comparison.worstCase, "c4");
  EXPECT_EQ(comparison.losses, 2U);
  EXPECT_EQ(CompareValues(Base(), Base()).worstCase, "");
}

// Four times as many cases halve the interval.
TEST(JudgeMeasure, SaysHowManyMoreCasesItWouldTake) {
  const MeasureComparison comparison = CompareValues(Base(), Shifted(-0.2, 1));
  ASSERT_EQ(comparison.verdict, Change::kUndecided);
  ASSERT_TRUE(comparison.more);
  const double half = (comparison.high - comparison.low) / 2;
  const double needed = 30 * std::pow(half / std::abs(comparison.difference), 2);
  EXPECT_NEAR(static_cast<double>(*comparison.more), needed - 30, 2);
  EXPECT_FALSE(CompareValues(Base(), Shifted(-1, 0.5)).more);
}

TEST(JudgeMeasure, DistancesFromTheTruthAreBetterWhenTheyAreLess) {
  const auto set = [](double off) {
    Json results = ResultsJson({});
    for (int i = 0; i < 10; ++i) {
      Json one = CaseJson("c" + std::to_string(i), {});
      const double value = 90 + (i % 2 == 0 ? 1 : -1) * (off + 0.01 * i);
      one["results"] = {{{"name", "delay"},
                         {"value", value},
                         {"unit", "ms"},
                         {"better", "none"},
                         {"file", Json()},
                         {"reason", Json()},
                         {"truth", 90}}};
      results["cases"].push_back(one);
    }
    return SetOf(results);
  };
  const MeasureComparison nearer = CompareResults(set(5), set(2), {}).measures[0];
  EXPECT_EQ(nearer.verdict, Change::kBetter);
  EXPECT_TRUE(nearer.toTruth);
  EXPECT_EQ(CompareResults(set(2), set(5), {}).measures[0].verdict, Change::kWorse);
}

TEST(JudgeTime, IsARatioOfMediansThatDecidesOnlyWhereItIsAskedTo) {
  const auto timed = [](double factor) {
    Json results = OneFigureEach(std::vector<double>(20, 1));
    for (size_t i = 0; i < 20; ++i) {
      const double seconds = (1 + 0.5 * static_cast<double>(i)) * factor;
      results["cases"][i]["elapsed"] = seconds * (1 + 0.01 * static_cast<double>(i % 3));
      results["cases"][i]["cpu"] = seconds;
    }
    return SetOf(results);
  };
  const Comparison quiet = CompareResults(timed(1), timed(1.5), {});
  ASSERT_EQ(quiet.times.size(), 2U);
  EXPECT_EQ(quiet.times[0].name, "elapsed");
  EXPECT_NEAR(quiet.times[0].ratio, 1.5, 1e-12);
  EXPECT_NEAR(quiet.times[0].quartiles[0], 1.5, 1e-12);
  EXPECT_FALSE(quiet.times[0].verdict);
  EXPECT_EQ(quiet.verdict, Change::kSame);
  const Comparison slower = CompareResults(timed(1), timed(1.5), {.times = true});
  EXPECT_EQ(slower.times[0].verdict, Change::kWorse);
  EXPECT_EQ(slower.verdict, Change::kWorse);
  EXPECT_EQ(CompareResults(timed(1.5), timed(1), {.times = true}).verdict, Change::kBetter);
  EXPECT_EQ(CompareResults(timed(1), timed(1.05), {.times = true}).times[0].verdict, Change::kSame);
  const CompareRules wide = {.margins = {{"elapsed", 0.6}, {"cpu", 0.6}}, .times = true};
  EXPECT_EQ(CompareResults(timed(1), timed(1.5), wide).verdict, Change::kSame);
}

}  // namespace
}  // namespace host
