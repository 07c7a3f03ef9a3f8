#pragma once

#include <string>
#include <vector>

#include "run/case.h"

namespace host {

// The words of a command line that runs this case: "audio_bench", "run", "TestReverb", ... Options
// that have their usual values are left out, and so are those that decide about nothing but where
// a report goes.
std::vector<std::string> CommandWords(const Case& what);

}  // namespace host
