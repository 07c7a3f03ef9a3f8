#pragma once

#include <map>
#include <string>

#include "suite/suite_table.h"

namespace host {

// What the names of `each` stand for in one case: "call" and "call.path".
using PlaceholderValues = std::map<std::string, std::string>;

// The text with its {names} replaced; "{{" and "}}" are braces. Throws UsageError, with the place
// of the text, when a name stands for nothing.
std::string FillIn(const PlacedText& text, const PlaceholderValues& values);

}  // namespace host
