#pragma once

#include <string>
#include <vector>

namespace host {

using Arguments = std::vector<std::string>;

// The words that a routine takes after these arguments, where they are few: true and false, the ids
// of codecs, presets. Empty when there is no such routine or no such choice.
std::vector<std::string> ArgumentValues(const std::string& routine, const Arguments& before);

}  // namespace host
