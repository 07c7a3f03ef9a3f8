#pragma once

#include "process/limits.h"
#include "report/report.h"
#include "run/plan.h"

namespace host {

// After the run: writes the outputs that the case wants to where it wants them, those that are as
// they should be. What cannot be written is a problem of the run.
RunReport HandOver(const Plan& plan, RunReport report, Limits& limits);

// Whether every output that was written has been handed over.
bool AllHandedOver(const RunReport& report);

}  // namespace host
