#pragma once

#include <string>
#include <string_view>

namespace host {

// The text with every control character, and every byte that is not UTF-8, written as an escape
// ("\n", "\x1b"), so that a file name cannot move the cursor or forge a line of the report.
std::string Printable(std::string_view text);

}  // namespace host
