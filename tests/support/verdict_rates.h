#pragma once

#include <cmath>
#include <numbers>

#include "compare/judge_measure.h"
#include "statistics/normal.h"
#include "statistics/random.h"

namespace host {

// Tables of differences that are drawn from a distribution, judged as compare judges them.

// What the differences are like, all of standard deviation 1: Laplace's has long tails on both
// sides, the exponential one is skewed by 2, with its tail among the wins or among the losses.
enum class Shape { kNormal, kLaplace, kRareWins, kRareLosses };

struct DrawnTables {
  Shape shape = Shape::kNormal;
  int tables = 2000;
  int measures = 1;  // Of each table, independent of each other.
  int pairs = 30;
  double mean = 0;  // Of the differences, whose standard deviation is 1.
  int resamples = 10000;
};

// In shares of all tables.
struct VerdictRates {
  double measureWorse = 0;  // Of the first measure.
  double overallWorse = 0;
};

// Of mean 0.
inline double Draw(Shape shape, statistics::Random& random) {
  const double share = random.Uniform();
  switch (shape) {
    case Shape::kNormal:
      break;
    case Shape::kLaplace:
      return (share < 0.5 ? std::log(2 * share) : -std::log(2 - 2 * share)) / std::numbers::sqrt2;
    case Shape::kRareWins:
      return -std::log(share) - 1;
    case Shape::kRareLosses:
      return std::log(share) + 1;
  }
  return statistics::NormalQuantile(share);
}

inline VerdictRates RatesOf(const DrawnTables& drawn) {
  statistics::Random random(42);
  VerdictRates rates;
  for (int table = 0; table < drawn.tables; ++table) {
    PairedResults results;
    const ComparedCase unnamed = {};
    results.cases.assign(static_cast<size_t>(drawn.pairs), &unnamed);
    std::vector<JudgedMeasure> judged;
    for (int measure = 0; measure < drawn.measures; ++measure) {
      PairedMeasure paired = {.kind = {.name = "drawn", .unit = "dB", .better = "higher"}};
      for (size_t i = 0; i < results.cases.size(); ++i) {
        paired.pairs.push_back({i, 0, drawn.mean + Draw(drawn.shape, random)});
      }
      judged.push_back(JudgeMeasure(paired, results, 0, drawn.resamples));
    }
    Correct(judged);
    const double share = 1.0 / drawn.tables;
    if (judged.front().comparison.verdict == Change::kWorse) rates.measureWorse += share;
    for (const JudgedMeasure& each : judged) {
      if (!IsWorse(each.comparison.verdict) || !each.comparison.holds) continue;
      rates.overallWorse += share;
      break;
    }
  }
  return rates;
}

}  // namespace host
