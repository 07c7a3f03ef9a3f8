#pragma once

#include "report/report.h"
#include "run/problems.h"

namespace host {

// After the run, and after its outputs have been judged: adds what is wrong with the inputs that
// were absent, as they may be, where that decides about the run. It does when an argument names the
// file, which "none" would have said to be none; when the row needs it; and when an output was left
// absent or without content, for no reason of its own.
void JudgeAbsence(const RunReport& report, Problems& problems);

// Whether an output was left absent or without content, for no reason of its own.
bool LeftNothing(const RunReport& report, const Problems& problems);

}  // namespace host
