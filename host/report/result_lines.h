#pragma once

#include <string>
#include <vector>

#include "results/result.h"

namespace host {

// "  result  delay  89 ms", a line for each result but lengths, which stand beside their files. Of
// many only the last 20, which sum the others up; then the text says where the others are.
std::string ResultLines(const std::vector<Result>& results, const std::string& others);

}  // namespace host
