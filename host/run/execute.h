#pragma once

#include <optional>
#include <vector>

#include "files/file_before.h"
#include "files/workspace.h"
#include "process/child.h"
#include "process/limits.h"
#include "results/line_results.h"
#include "run/check.h"
#include "run/plan.h"

namespace host {

// The fourth step: the routine has been run.
struct Executed {
  Checked checked;
  std::vector<FileBefore> inputsBefore = {};
  std::vector<OutputBefore> outputsBefore = {};
  LineResults heard = LineResults();         // Of what the routine printed and logged.
  std::optional<ChildOutcome> outcome = {};  // Nothing when the routine was not run.
  std::optional<Stop> stop = {};
};

// Runs the routine in a process of its own, where it can be run. A log that cannot be written and
// limits that are reached before the routine starts stop the run.
Executed Execute(const Plan& plan, Checked checked, Limits& limits);

}  // namespace host
