#pragma once

#include <functional>
#include <span>
#include <string>

#include "files/workspace.h"
#include "run/plan.h"

namespace host {

// Both throw UsageError, before anything is written.

// Refuses a run with these inputs in which a file that is written (an output, a copy, the log, the
// report) is at the same time another one of its files, by its name or by links. Calls `goOn` again
// and again, which may throw.
void RefuseSharedFiles(std::span<const FilePlace> inputs, const Plan& plan,
                       const std::function<void()>& goOn);

// Refuses outputs in whose place something else than a file is, a file that has another name as
// well, or a symbolic link that leads out of the workspace.
void RefuseOutputs(std::span<const FilePlace> outputs, const std::string& workspace);

// Removes the WAVE copies that an earlier run has made of these outputs: a copy that is there after
// a run is of that run.
void RemoveCopies(std::span<const FilePlace> outputs, const std::string& workspace);

}  // namespace host
