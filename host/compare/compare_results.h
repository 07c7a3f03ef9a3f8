#pragma once

#include <map>
#include <string>

#include "compare/comparison.h"
#include "compare/result_set.h"

namespace host {

struct CompareRules {
  // What does not matter, by measure; before what the suite and the measure itself say.
  std::map<std::string, double> margins = {};
  bool times = false;  // Times decide as well.
  int resamples = 10000;
};

// Compares B with A. Throws UsageError when they are not comparable, or when a margin is one of no
// measure that they have.
Comparison CompareResults(const ResultSet& a, const ResultSet& b, const CompareRules& rules);

}  // namespace host
