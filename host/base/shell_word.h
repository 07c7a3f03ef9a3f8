#pragma once

#include <string>

namespace host {

// A word as a shell takes it for one: in quotes where it needs them.
std::string ShellWord(const std::string& word);

}  // namespace host
