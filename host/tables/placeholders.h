#pragma once

#include <map>
#include <string>

#include "tables/suite_table.h"

namespace host {

// What names stand for: in one case those of its `each`, "call" and "call.path".
using PlaceholderValues = std::map<std::string, std::string>;

// The text with its {names} replaced; "{{" and "}}" are braces. Throws UsageError, with the place
// of the text, when a name stands for nothing.
std::string FillIn(const PlacedText& text, const PlaceholderValues& values);

}  // namespace host
