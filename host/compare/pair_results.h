#pragma once

#include <optional>
#include <vector>

#include "compare/comparison.h"
#include "compare/result_set.h"

namespace host {

// What two sets of results have in common, and what only one has.

// The figures of one measure of one case in both: their means where it has several files or
// channels.
struct FigurePair {
  size_t at;  // Index of the common case.
  double a;
  double b;
};

struct PairedMeasure {
  MeasureKind kind = {};
  bool toTruth = false;  // The values are distances from the truth.
  std::vector<FigurePair> pairs = {};
};

struct PairedResults {
  std::vector<const ComparedCase*> cases = {};  // Of A; B has them all.
  // The number of the cluster of each, counted from 0; where no case has one there are none.
  std::vector<size_t> clusters = {};
  std::vector<PairedMeasure> measures = {};
  std::vector<PairedMeasure> times = {};  // Of the machine, rather than of the sound.
  std::vector<OnlyThere> gone = {};
  std::vector<OnlyThere> added = {};
  std::vector<FallenVerdict> fallen = {};
  std::vector<NewGuard> guards = {};
  size_t files = 0;
  size_t sameBytes = 0;
  size_t otherBytes = 0;
};

// The two are comparable.
PairedResults PairResults(const ResultSet& a, const ResultSet& b);

}  // namespace host
