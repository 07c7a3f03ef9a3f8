#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/json_parts.h"
#include "compare/compare_results.h"
#include "report_page/case_changes.h"

namespace host {

// What a page tells of a run: its totals, and the cases that are worth looking at, without all the
// others being held.

// The order of the cases.
enum class PageRank { kFailed, kWorse, kWarned, kUndecided, kBetter, kSame, kNotRun };

struct PageCase {
  Json record = {};  // As results.json has it.
  PageRank rank = PageRank::kSame;
  CaseChange change = {};
  // Its figures and guards, which `change` tells of, by their order.
  std::vector<std::pair<std::string, std::string>> guards = {};  // Name and file.
  Json before = {};                                              // Its record in the other run.
};

struct PageRun {
  std::string path = {};                       // As it was given.
  std::string folder = {};                     // That paths of results.json are relative to.
  bool report = false;                         // Of one run.
  Json header = {};                            // All of results.json but its cases; or the report.
  std::map<std::string, size_t> counts = {};   // By verdict; a known failure is "known" alone.
  std::map<std::string, size_t> changes = {};  // By the word of the change, "gone" among them.
  size_t total = 0;
  std::vector<PageCase> cases = {};  // The worst first.

  // Of what it is compared with.
  std::string against = {};  // As it was given; empty for nothing.
  std::string againstFolder = {};
  Json againstHeader = {};
  std::optional<Comparison> comparison = {};
};

// Reads the results of a suite or of a run, and those of another one unless `against` is empty: a
// folder, results.json, a report, or "baseline:NAME". `most` is how many cases are taken. Throws
// UsageError.
PageRun ReadPageRun(const std::string& path, const std::string& against, size_t most);

}  // namespace host
