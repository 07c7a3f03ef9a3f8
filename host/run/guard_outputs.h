#pragma once

#include "process/limits.h"
#include "report/report.h"
#include "run/plan.h"

namespace host {

// Holds every audio output that the run has written against the input that it was made from, for as
// long as the limits allow, and adds the guards that are hit. The files have been looked at.
void GuardOutputs(const Plan& plan, Limits& limits, RunReport& report);

}  // namespace host
