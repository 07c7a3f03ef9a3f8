#pragma once

#include <string>
#include <vector>

#include "suite/suite.h"
#include "suite/suite_case.h"
#include "suite/suite_margins.h"

namespace host {

// The cases that a command line asks for, in declared order: of the suite's file or of the
// catalogue, those that `glob` and `group` choose, numbered; of these what belongs to the shard.
// The cases that these read from are among them, not counted where they were not chosen. Throws
// UsageError when nothing is chosen, or when a case cannot be run as it is declared.
struct Selection {
  std::vector<SuiteCase> cases;
  size_t chosen = 0;          // In all shards.
  std::string digest;         // Of what was chosen in all shards: two that have it are the same.
  SuiteMargins margins = {};  // That the suite declares.
};

Selection SelectCases(const SuiteOptions& options);

}  // namespace host
