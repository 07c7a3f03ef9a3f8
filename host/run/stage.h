#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "files/workspace_lock.h"
#include "process/limits.h"
#include "recording/staged_record.h"
#include "run/plan.h"

namespace host {

// The second step: the workspace is this run's alone, and holds the recordings of the user's.
struct Staged {
  std::unique_ptr<const WorkspaceLock> lock = {};  // Null while there is no workspace to lock.
  std::vector<StagedFile> files = {};
  std::optional<Stop> stop = {};
};

// Keeps the workspace for this run where there is one, and puts the recordings into it that the
// case names. The other inputs are what already stands there.
Staged Stage(const Plan& plan, Limits& limits);

// Throws UsageError when there is no such folder and none can be made.
void CreateFolder(const std::string& path);

// Locks the workspace. The time of the run starts anew when that is done.
std::unique_ptr<const WorkspaceLock> LockWorkspace(const Plan& plan, Limits& limits);

}  // namespace host
