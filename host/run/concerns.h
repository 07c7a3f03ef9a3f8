#pragma once

#include "report/report.h"
#include "run/problems.h"

namespace host {

// After the run: makes problems of the concerns about its inputs, by what became of them. A crash
// is told with the input that is its reason.
void JudgeConcerns(const RunReport& report, Problems& problems);

}  // namespace host
