#pragma once

#include <memory>
#include <optional>

#include "files/workspace_lock.h"
#include "process/limits.h"
#include "run/plan.h"

namespace host {

// The second step: the workspace is this run's alone.
struct Staged {
  std::unique_ptr<const WorkspaceLock> lock = {};  // Null while there is no workspace to lock.
  std::optional<Stop> stop = {};
};

// Keeps the workspace for this run where there is one. The inputs are what already stands there.
Staged Stage(const Plan& plan, Limits& limits);

// Locks the workspace. The time of the run starts anew when that is done.
std::unique_ptr<const WorkspaceLock> LockWorkspace(const Plan& plan, Limits& limits);

}  // namespace host
