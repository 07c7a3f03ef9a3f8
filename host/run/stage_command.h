#pragma once

#include "run/case.h"

namespace host {

// Puts the recordings of a case into its workspace and says what was done, and what runs the
// routine on them. Returns the host's exit code. Throws UsageError when it cannot be done as asked.
int StageOnly(const Case& what);

}  // namespace host
