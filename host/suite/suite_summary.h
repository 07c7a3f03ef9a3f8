#pragma once

#include <string>

#include "base/paint.h"

namespace host {

// What is said at the end of a suite, read from its folder: a table of what did not pass, with
// reasons; the counts; where the results are.
std::string SuiteSummary(const std::string& folder, const Paint& paint = {});

}  // namespace host
