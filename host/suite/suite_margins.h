#pragma once

#include <string>
#include <utility>
#include <vector>

namespace host {

// By measure, what of a difference does not matter when results of the suite are compared.
using SuiteMargins = std::vector<std::pair<std::string, double>>;

// What the table [margins] of a suite file says; nothing without one. Throws UsageError.
SuiteMargins ReadSuiteMargins(const std::string& path);

}  // namespace host
