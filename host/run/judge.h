#pragma once

#include <vector>

#include "report/report.h"
#include "report/verdict.h"
#include "run/problems.h"

namespace host {

// After the run: how it ended, and what became of its log and of the files that it used.
std::vector<Problem> OutcomeProblems(const ChildOutcome& outcome, double timeout);

// After the run: what keeps it from passing, each from what is known at its point. Of its outputs
// only when the routine came to its end.
Problems RunProblems(const RunReport& report, double timeout);

// The last but one step: the report with its judgement, and each file with its problems. Never a
// pass on nothing.
RunReport Judged(RunReport report);

}  // namespace host
