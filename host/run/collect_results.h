#pragma once

#include <vector>

#include "process/limits.h"
#include "report/report.h"
#include "results/line_results.h"
#include "run/plan.h"

namespace host {

// All that the routine has found out: what it said while it ran (`heard`), the texts and tables
// among its outputs, read for as long as the limits allow, the lengths of its audio outputs, and
// how its devices kept up. The outputs of the report have been looked at.
std::vector<Result> CollectResults(const Plan& plan, LineResults heard, const RunReport& report,
                                   Limits& limits);

}  // namespace host
