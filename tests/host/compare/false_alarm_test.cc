// How often chance alone is called worse, and how often a change is seen. The numbers are the same
// in every run; benchmarks/compare_rates.cc has more repetitions.

#include <gmock/gmock.h>

#include "support/verdict_rates.h"

namespace host {
namespace {

TEST(VerdictRates, ChanceAloneIsSeldomWorse) {
  const VerdictRates rates =
      RatesOf({.tables = 300, .measures = 1, .pairs = 30, .resamples = 2000});
  EXPECT_LE(rates.measureWorse, 0.05);
  EXPECT_LE(rates.overallWorse, 0.05);
  // An interval that is never left would pass as well.
  EXPECT_GE(rates.measureWorse, 0.005);
}

TEST(VerdictRates, ChanceAloneIsSeldomWorseAmongManyMeasures) {
  const VerdictRates rates =
      RatesOf({.tables = 100, .measures = 10, .pairs = 20, .resamples = 2000});
  EXPECT_LE(rates.measureWorse, 0.05);
  EXPECT_LE(rates.overallWorse, 0.05);
}

TEST(VerdictRates, ChanceAloneSeldomMakesTheWholeWorseWhereTailsAreLong) {
  for (const int pairs : {12, 15}) {
    const VerdictRates rates = RatesOf({.shape = Shape::kLaplace,
                                        .tables = 1000,
                                        .measures = 1,
                                        .pairs = pairs,
                                        .resamples = 1000});
    EXPECT_LE(rates.overallWorse, 0.04) << pairs;
    EXPECT_GE(rates.overallWorse, 0.005) << pairs;
  }
}

TEST(VerdictRates, HalfADecibelIsSeenInThirtyPairs) {
  const VerdictRates rates =
      RatesOf({.tables = 300, .measures = 1, .pairs = 30, .mean = -0.5, .resamples = 2000});
  EXPECT_GE(rates.measureWorse, 0.75);
  EXPECT_GE(rates.overallWorse, 0.75);
}

}  // namespace
}  // namespace host
