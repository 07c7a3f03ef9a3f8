#pragma once

#include "process/limits.h"
#include "report/report.h"
#include "run/plan.h"

namespace host {

// Adds the figures of a run that a report is asked for: of its times and memory, and of each audio
// output what its case asks for, else its levels and what its row declares.
void MeasureOutputs(const Plan& plan, Limits& limits, RunReport& report);

}  // namespace host
