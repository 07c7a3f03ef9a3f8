#pragma once

#include <vector>

#include "report/report.h"
#include "report/verdict.h"

namespace host {

// What keeps a run from passing, each from what is known at its point. Never a pass on nothing.

// After the run: how it ended, and what became of its log and of the files that it used.
std::vector<Problem> OutcomeProblems(const ChildOutcome& outcome, double timeout);

// The problems of its files, inputs first.
std::vector<Problem> FileProblems(const RunReport& report);

// After the run: adds what is wrong with its inputs and, when the routine came to its end, with its
// outputs to the problems of these files. Returns all problems of the run.
std::vector<Problem> RunProblems(RunReport& report, double timeout);

}  // namespace host
