#pragma once

#include "process/limits.h"
#include "report/report.h"
#include "run/plan.h"

namespace host {

// Adds what guards say of the run beside the sound of its outputs: of arguments that were not used,
// of lines of the engine, of inputs that were not read to their end, and of outputs that were
// appended to. Goes on for as long as the limits allow.
void GuardRun(const Plan& plan, Limits& limits, RunReport& report);

}  // namespace host
