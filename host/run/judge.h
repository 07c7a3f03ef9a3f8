#pragma once

#include <span>
#include <string>
#include <vector>

#include "report/report.h"
#include "report/verdict.h"

namespace host {

// What keeps a run from passing, each from what is known at its point. Never a pass on nothing.

// Before the run: inputs that are missing, unreadable, or hold no whole block.
std::vector<Problem> InputProblems(std::span<const FilePlace> inputs);

// After the run: how it ended, what became of its log and of the files that it used.
std::vector<Problem> OutcomeProblems(const ChildOutcome& outcome, double timeout);

// After the run: inputs that changed meanwhile, or could not be read.
std::vector<Problem> InputProblemsAfter(const RunReport& report);

// After a run that returned: outputs that it did not write, or not as it should.
std::vector<Problem> OutputProblems(const RunReport& report);

// All of these.
std::vector<Problem> RunProblems(const RunReport& report, double timeout);

}  // namespace host
