#pragma once

#include <string>

#include "process/limits.h"
#include "report/report.h"
#include "report/result_file.h"
#include "run/case.h"
#include "run/plan.h"

namespace host {

// Takes a plan through the steps of a run: stage, check, execute, examine, judge, hand over. What
// goes wrong on the way stands in the report. Where `json` is not null, an earlier report there
// says while the routine runs, and for ever if this process is killed meanwhile, that the run has
// not ended.
RunReport RunPlan(Plan plan, Limits& limits, ResultFile* json);

// Runs one case, reports, and returns the host's exit code. Throws UsageError when it cannot be run
// as asked, or when the machine has no room for another process; the report of such a run says so.
int Run(const Case& what);

}  // namespace host
