#pragma once

#include <string>

namespace host {

// What tells this build from every other: the GNU build ids of the program and of the library of
// measures that it has loaded, in hexadecimal digits, with a "-" between them. Empty where one of
// them has none.
std::string BuildIds();

}  // namespace host
