#pragma once

#include <vector>

#include "report/report.h"
#include "report/verdict.h"

namespace host {

// What keeps a run from passing, by what it is wrong with.
struct Problems {
  std::vector<Problem> run = {};
  std::vector<std::vector<Problem>> inputs = {};  // For each input of the report its own.
  std::vector<std::vector<Problem>> outputs = {};

  // All in one list: those of the run, of its inputs, of its outputs.
  std::vector<Problem> All() const;
};

// The problems that the report knows already.
Problems KnownProblems(const RunReport& report);

}  // namespace host
