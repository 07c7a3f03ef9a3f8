#pragma once

#include "process/limits.h"
#include "report/report.h"
#include "run/execute.h"
#include "run/plan.h"

namespace host {

// The fifth step: looks at the files of a run after its end, for as long as the limits allow, and
// tells all that is known of it. A file that is looked at later has no figures.
RunReport Examine(const Plan& plan, Executed executed, Limits& limits);

}  // namespace host
