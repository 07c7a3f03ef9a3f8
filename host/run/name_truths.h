#pragma once

#include "report/report.h"
#include "run/plan.h"

namespace host {

// Writes beside figures and results what they should be: what the case says, and what is known of
// the demo's recordings where it runs on them.
void NameTruths(const Plan& plan, RunReport& report);

}  // namespace host
