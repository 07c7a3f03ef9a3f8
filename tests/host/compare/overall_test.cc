// What the verdict on the whole is.

#include <gmock/gmock.h>

#include "audio_measures/measure.h"
#include "base/usage_error.h"
#include "compare/compare_results.h"
#include "compare/comparison_forms.h"
#include "statistics/normal.h"
#include "statistics/random.h"
#include "synthetic_results.h"

namespace host {
namespace {

using testing::HasSubstr;

Change Overall(const Json& a, const Json& b, const CompareRules& rules = {}) {
  return CompareResults(SetOf(a, "A"), SetOf(b, "B"), rules).verdict;
}

Json Better() { return OneFigureEach(std::vector<double>(10, 5)); }
Json Plain() { return OneFigureEach(std::vector<double>(10, 4)); }

TEST(OverallVerdict, IsWhatTheMeasuresSay) {
  EXPECT_EQ(Overall(Plain(), Plain()), Change::kSame);
  EXPECT_EQ(Overall(Plain(), Better()), Change::kBetter);
  EXPECT_EQ(Overall(Better(), Plain()), Change::kWorse);
}

// However much better the figures are.
TEST(OverallVerdict, IsWorseWhereSomethingIsLost) {
  Json b = Better();
  b["cases"][3]["verdict"] = "fail";
  EXPECT_EQ(Overall(Plain(), b), Change::kWorse);
  b = Better();
  b["cases"][3]["guards"] = {
      {{"name", "click"}, {"file", "out.wav"}, {"at", 1}, {"channel", 0}, {"fails", false}}};
  EXPECT_EQ(Overall(Plain(), b), Change::kWorse);
  b = Better();
  b["cases"].erase(3);
  EXPECT_EQ(Overall(Plain(), b), Change::kWorse);
  b = Better();
  b["cases"][3]["outputs"] = Json::array();
  EXPECT_EQ(Overall(Plain(), b), Change::kWorse);
  b = Better();
  b["cases"][3]["figures"] = Json::array();
  EXPECT_EQ(Overall(Plain(), b), Change::kWorse);
}

TEST(OverallVerdict, WhatIsNewIsNotWorse) {
  Json b = Plain();
  b["cases"].push_back(CaseJson("new", {{.value = 1}}));
  EXPECT_EQ(Overall(Plain(), b), Change::kSame);
}

TEST(OverallVerdict, IsUndecidedWhereFilesDifferAndNoFigureSaysHow) {
  Json a = ResultsJson({CaseJson("c", {})});
  Json b = a;
  b["cases"][0]["outputs"][0]["sha256"] = std::string(64, '1');
  EXPECT_EQ(Overall(a, a), Change::kSame);
  EXPECT_EQ(Overall(a, b), Change::kUndecided);
}

// Twenty measures of 30 cases; `changed` of them by `shift` standard deviations.
Json Many(uint64_t seed, int changed, double shift) {
  statistics::Random random(seed);
  Json results = ResultsJson({});
  for (int i = 0; i < 30; ++i) {
    std::vector<SyntheticFigure> figures;
    for (int m = 0; m < 20; ++m) {
      const double noise = statistics::NormalQuantile(random.Uniform());
      figures.push_back(
          {.name = "m" + std::to_string(m), .value = noise + (m < changed ? shift : 0)});
    }
    results["cases"].push_back(CaseJson("c" + std::to_string(i), figures));
  }
  return results;
}

// One of twenty that is barely worse by itself is no proof; one that is worse beyond doubt is.
TEST(OverallVerdict, IsCorrectedForTheNumberOfMeasures) {
  bool seen = false;
  for (uint64_t seed = 1; seed < 40 && !seen; ++seed) {
    const Comparison comparison =
        CompareResults(SetOf(Many(seed, 0, 0)), SetOf(Many(seed + 100, 0, 0)), {});
    const MeasureComparison& worst = comparison.measures.front();
    if (worst.verdict != Change::kWorse || worst.holds) continue;
    seen = true;
    EXPECT_NE(comparison.verdict, Change::kWorse);
    EXPECT_THAT(ComparisonSummary(comparison), HasSubstr(" worse by itself"));
    EXPECT_THAT(TextComparison(comparison), HasSubstr("worse (by itself)"));
  }
  EXPECT_TRUE(seen);
  const Comparison sure = CompareResults(SetOf(Many(1, 0, 0)), SetOf(Many(2, 1, -3)), {});
  EXPECT_EQ(sure.verdict, Change::kWorse);
  EXPECT_EQ(sure.measures.front().kind.name, "m0");
  EXPECT_TRUE(sure.measures.front().holds);
  EXPECT_THAT(ComparisonSummary(sure), testing::StartsWith("worse: m0 ("));
}

TEST(ComparisonText, HasTheColorsOfItsVerdictsInTheirColumns) {
  const Comparison comparison = CompareResults(SetOf(Many(1, 0, 0)), SetOf(Many(2, 1, -3)), {});
  const std::string plain = TextComparison(comparison);
  std::string colored = TextComparison(comparison, Paint(Color::kAlways, 1));
  EXPECT_THAT(colored, HasSubstr("  \033[31mworse\033[0m  "));
  EXPECT_THAT(colored, HasSubstr("\n\033[31mworse\033[0m: m0 ("));
  EXPECT_THAT(colored, HasSubstr("  \033[33mundecided\033[0m, "));
  for (const std::string code : {"\033[31m", "\033[33m", "\033[32m", "\033[0m"}) {
    for (size_t at = 0; (at = colored.find(code)) != std::string::npos;) {
      colored.erase(at, code.size());
    }
  }
  EXPECT_EQ(colored, plain);
  EXPECT_EQ(TextComparison(comparison, Paint(Color::kNever, 1)), plain);
}

TEST(OverallVerdict, TheWorstMeasureComesFirst) {
  const auto set = [](double a, double b, double c, double d) {
    Json results = ResultsJson({});
    for (int i = 0; i < 10; ++i) {
      results["cases"].push_back(
          CaseJson("c" + std::to_string(i), {{.name = "same", .value = a},
                                             {.name = "open", .value = b * (i % 2 == 0 ? 1 : -1)},
                                             {.name = "best", .value = c},
                                             {.name = "worst", .value = d}}));
    }
    return SetOf(results);
  };
  const Comparison comparison = CompareResults(set(1, 0, 1, 1), set(1, 1, 2, 0), {});
  std::vector<std::string> names;
  for (const MeasureComparison& each : comparison.measures) names.push_back(each.kind.name);
  EXPECT_THAT(names, testing::ElementsAre("worst", "open", "best", "same"));
}

TEST(Margins, ComeFromTheCommandLineThenFromTheSuite) {
  const auto margin = [](Json a, Json b, const CompareRules& rules) {
    return CompareResults(SetOf(a), SetOf(b), rules).measures[0].margin;
  };
  Json declared = Plain();
  declared["margins"] = {{"my_sdr", 0.3}};
  EXPECT_EQ(margin(declared, declared, {.margins = {{"my_sdr", 0.7}}}), 0.7);
  EXPECT_EQ(margin(declared, declared, {}), 0.3);
  Json other = declared;
  other["margins"]["my_sdr"] = 0.5;
  EXPECT_EQ(margin(declared, other, {}), 0.5);
  EXPECT_EQ(Overall(declared, Better()), Change::kBetter);
  declared["margins"]["my_sdr"] = 2;
  EXPECT_EQ(Overall(declared, Better()), Change::kSame);
}

TEST(Margins, ComeFromTheMeasureLast) {
  const audio_measures::Measure* const measure = audio_measures::FindMeasure("si_sdr");
  ASSERT_NE(measure, nullptr);
  ASSERT_GT(measure->margin, 0);
  EXPECT_EQ(CompareValues({1, 2}, {1, 2}, {.name = "si_sdr"}).margin, measure->margin);
  EXPECT_EQ(CompareValues({1, 2}, {1, 2}, {.name = "made_up"}).margin, 0);
}

TEST(Margins, OfNoMeasureAreRefused) {
  try {
    CompareResults(SetOf(Plain()), SetOf(Plain()), {.margins = {{"my_sdt", 0.7}}});
    ADD_FAILURE();
  } catch (const UsageError& error) {
    EXPECT_THAT(error.message,
                HasSubstr("no figure of both is called my_sdt; did you mean my_sdr?"));
  }
}

TEST(Trust, AMeasureThatIsUntrustedInEitherIsSo) {
  Json b = Plain();
  b["cases"][0]["figures"][0]["untrusted"] = true;
  EXPECT_TRUE(CompareResults(SetOf(Plain()), SetOf(b), {}).measures[0].untrusted);
  EXPECT_FALSE(CompareResults(SetOf(Plain()), SetOf(Plain()), {}).measures[0].untrusted);
}

}  // namespace
}  // namespace host
