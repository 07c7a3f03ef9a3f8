#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "process/limits.h"
#include "report/report.h"
#include "run/plan.h"
#include "run/stage.h"

namespace host {

// The third step: what the inputs are, those that the first one lists among them.
struct Checked {
  std::unique_ptr<const WorkspaceLock> lock = {};
  std::vector<StagedFile> staged = {};
  std::vector<FileReport> inputs = {};
  bool ready = false;  // The routine can be run: on these inputs, and its outputs have their place.
  std::optional<Stop> stop = {};
};

// Looks at the inputs. Where the routine may be run on them, makes the workspace ready for its
// outputs.
Checked Check(const Plan& plan, Staged staged, Limits& limits);

// What the report says before the routine is run.
RunReport ReportOf(const Plan& plan, const Checked& checked);

}  // namespace host
