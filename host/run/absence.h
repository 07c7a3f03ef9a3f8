#pragma once

#include "report/report.h"

namespace host {

// After the run, and after its outputs have been judged: makes an input that was absent, as it may
// be, a missing input where that decides about the run. It does when an argument names the file,
// which "none" would have said to be none; when the row needs it; and when an output was left
// absent or without content, for no reason of its own.
void JudgeAbsence(RunReport& report);

// Whether an output was left absent or without content, for no reason of its own.
bool LeftNothing(const RunReport& report);

}  // namespace host
