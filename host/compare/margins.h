#pragma once

#include <optional>
#include <string>

#include "compare/result_set.h"

namespace host {

// How much of a difference does not matter by itself, in the unit of the measure: what the measure
// declares, 0 for what is no measure of the bench's own.
double MarginOfMeasure(const std::string& name);

// What one of two sets of results declares for it, B before A; nothing where neither does.
std::optional<double> DeclaredMargin(const ResultSet& a, const ResultSet& b,
                                     const std::string& name);

}  // namespace host
