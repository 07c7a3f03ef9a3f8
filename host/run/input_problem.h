#pragma once

#include <optional>
#include <span>

#include "report/report.h"
#include "report/verdict.h"

namespace host {

// Before the run: what is wrong with an input. It may be missing, unreadable, a file of another
// kind, or too short for a block; nothing of this is wrong with an optional one that is missing or
// short.
std::optional<Problem> InputProblem(const FilePlace& input);

// Whether a routine is run at all on inputs with these problems. It has an outcome for one that is
// too short, and for one that is missing from a list of which another file is there.
bool MayRun(std::span<const FileReport> inputs);

}  // namespace host
