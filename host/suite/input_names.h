#pragma once

#include "suite/suite_case.h"

namespace host {

// Throws UsageError when the inputs of a case, whose arguments are complete, or the outputs that it
// names references for, have a name that is none of its routine: as it opens the file, the last
// component of that, or the parameter that names it.
void CheckFileNames(const SuiteCase& one);

}  // namespace host
