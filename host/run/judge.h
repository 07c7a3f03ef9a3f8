#pragma once

#include <optional>
#include <span>
#include <vector>

#include "report/report.h"
#include "report/verdict.h"

namespace host {

// What keeps a run from passing, each from what is known at its point. Never a pass on nothing.

// Before the run: what is wrong with an input. It may be missing, unreadable, a file of another
// kind, or too short for a block; nothing of this is wrong with an optional one that is missing or
// short.
std::optional<Problem> InputProblem(const FilePlace& input);

// Whether a routine is run at all on inputs with these problems. It has an outcome for one that is
// too short, and for one that is missing from a list of which another file is there.
bool MayRun(std::span<const FileReport> inputs);

// After the run: how it ended, and what became of its log and of the files that it used.
std::vector<Problem> OutcomeProblems(const ChildOutcome& outcome, double timeout);

// The problems of its files, inputs first.
std::vector<Problem> FileProblems(const RunReport& report);

// After the run: adds what is wrong with its inputs and, when the routine came to its end, with its
// outputs to the problems of these files. Returns all problems of the run.
std::vector<Problem> RunProblems(RunReport& report, double timeout);

}  // namespace host
