#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/paint.h"
#include "suite/catalogue_cases.h"
#include "suite/shard.h"

namespace host {

// What `suite` is asked to do.
struct SuiteOptions {
  std::string file;    // Empty: the routines of the catalogue.
  std::string glob;    // Of ids; empty for all.
  std::string group;   // Of routines; empty for all.
  int jobs = 0;        // Cases at a time; 0: as many as there are processors.
  std::string out;     // Empty: bench_results/UTC-TIME.
  std::string engine;  // See FindEngine.
  bool engineOnly = false;
  bool resume = false;
  bool dryRun = false;
  bool strict = false;
  Color color = Color::kAuto;  // Of the verdicts.
  Shard shard = {};
  std::string scratch;  // Folder in which cases run; empty: in that of the results.
  std::vector<std::string> command = {};  // The words of the command line.
  DemoRecordings demo = {};               // Without a file.
  bool report = false;                    // Write a page at the end.
  // Is called with the folder once its results are written; returns an exit code.
  std::function<int(const std::string& folder)> ended = {};
};

// Runs many cases, writes their results and returns the exit code. Throws UsageError when that
// cannot be done as asked.
int RunSuite(const SuiteOptions& options);

// What `merge` is asked to do.
struct MergeOptions {
  std::vector<std::string> folders;
  std::string out;
  std::vector<std::string> command = {};
  Color color = Color::kAuto;  // Of the verdicts.
};

// Puts the results of all shards of one suite together, as one run would have left them. Returns
// the exit code that this run would have had. Throws UsageError when that cannot be done.
int MergeSuites(const MergeOptions& options);

}  // namespace host
