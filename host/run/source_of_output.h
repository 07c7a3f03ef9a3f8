#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "report/report.h"

namespace host {

// Which files an output of a run belongs with.

// The input whose declared name ends with `ending`, for the output number `place` of those that are
// made like it: of a list the one at the same place. Null for none.
const FileReport* SourceInput(std::string_view ending, size_t place,
                              std::span<const FileReport> inputs);

// Whether a file of a routine answers to a name: as it is opened, as it is declared, or its last
// part.
bool IsCalled(const FilePlace& file, const std::string& name);

}  // namespace host
