#pragma once

#include <string>

#include "compare/result_set.h"

namespace host {

// Measures the outputs of a suite of controls, each against what it was made of, and adds the
// figures to its results. `results` is the folder that the suite has left, `material` that of
// WriteControlMaterial.
void AddControlFigures(ResultSet& set, const std::string& results, const std::string& material);

}  // namespace host
