#pragma once

#include <string>

namespace host {

// How much of a difference does not matter by itself, in the unit of the measure: what the measure
// declares, 0 for what is no measure of the bench's own.
double MarginOfMeasure(const std::string& name);

}  // namespace host
