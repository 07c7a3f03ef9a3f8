#pragma once

#include <string>

namespace host {

// Why a word is no number of seconds, greater than 0; empty when it is.
std::string SecondsProblem(const std::string& word);

}  // namespace host
