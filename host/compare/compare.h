#pragma once

#include <string>
#include <vector>

#include "base/paint.h"
#include "compare/bench_suites.h"
#include "compare/compare_results.h"

namespace host {

// What `compare` is asked to do.
struct CompareOptions {
  // Two of: a folder of results, results.json, a report, an exported baseline, "baseline:NAME".
  std::vector<std::string> sets = {};

  // Or two, programs or engines, that run the suite that `suite` are the words of.
  std::vector<SuiteBench> benches = {};
  std::vector<std::string> suite = {};
  std::string out = {};  // Folder for their results; empty for a temporary one.

  CompareRules rules = {};
  bool recordMissing = false;
  Color color = Color::kAuto;
  std::string json = {};  // Where each form goes: a file, "-" for stdout, or empty.
  std::string csv = {};
  std::string junit = {};
};

// Compares and returns the exit code: kPass, or kFail when something is worse. Throws UsageError
// when that cannot be done.
int Compare(const CompareOptions& options);

}  // namespace host
