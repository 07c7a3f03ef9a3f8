#pragma once

#include <string>
#include <vector>

#include "suite/suite_case.h"

namespace host {

// The cases that a suite file (TOML) declares, in its order. Paths in it are relative to its
// folder. Throws UsageError, with file, line and column, when it cannot be read or is not right;
// what the catalogue has to say of routines and words is not asked.
std::vector<SuiteCase> ReadSuite(const std::string& path);

}  // namespace host
