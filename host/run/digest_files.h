#pragma once

#include <vector>

#include "process/limits.h"
#include "report/report.h"
#include "run/plan.h"

namespace host {

// Fills in the SHA-256 of the inputs as they are now, and from what they were made where they are
// what was put in their places. That takes none of the run's time, which starts anew. Throws Ended
// when somebody asks the host to end.
void DigestInputs(const Plan& plan, Limits& limits, std::vector<FileReport>& inputs);

// The same of an output, for as long as the limits allow.
void DigestOutput(Limits& limits, FileReport& output);

}  // namespace host
