#pragma once

#include <string>

#include "suite/suite_case.h"

namespace host {

// The inputs that a case names, each by the name of a file of its routine or its last component.

// Throws UsageError when a name is that of none of the routine's inputs, or of two.
void CheckInputNames(const SuiteCase& one);

// Copies them to their places in a workspace, as they are. Throws UsageError when that fails.
void PlaceInputs(const SuiteCase& one, const std::string& workspace);

}  // namespace host
