#pragma once

#include <span>
#include <vector>

#include "compare/comparison.h"
#include "compare/pair_results.h"

namespace host {

// Judges one measure over all cases that both have. `margin` is what does not matter, at least 0.
struct JudgedMeasure {
  MeasureComparison comparison;

  // How likely so much of a change is without any, for the correction of several measures; nothing
  // where chance has no part in the verdict: all differences are equal, or they are too few.
  std::optional<double> level = {};
  size_t things = 0;  // Independent ones.
};
JudgedMeasure JudgeMeasure(const PairedMeasure& measure, const PairedResults& results,
                           double margin, int resamples);

// Says of each measure whether its verdict holds among all of them (Holm).
void Correct(std::span<JudgedMeasure> measures);

// Judges the ratios of the times of all cases.
TimeComparison JudgeTime(const PairedMeasure& times, const PairedResults& results,
                         std::optional<double> margin, int resamples);

}  // namespace host
