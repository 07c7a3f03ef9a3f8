#pragma once

#include <span>
#include <vector>

#include "catalogue/files.h"
#include "catalogue/results.h"

namespace harness {

// The tables among the outputs of a run.
std::vector<ResultTable> ResultTables(std::span<const FileUse> outputs);

}  // namespace harness
