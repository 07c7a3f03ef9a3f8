#pragma once

#include "compare/result_set.h"

namespace host {

// Throws UsageError, which says why, when two sets of results are not of the same thing: other
// suites, other routines or words under the same id, no case in common, or measures whose figures
// mean something else.
void CheckComparable(const ResultSet& a, const ResultSet& b);

}  // namespace host
