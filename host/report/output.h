#pragma once

#include <string>

namespace host {

// Prints results on stdout and flushes it. Returns kPass, or kUsage if stdout cannot be written,
// with a line on stderr; silent on a closed pipe.
int PrintResults(const std::string& text);

}  // namespace host
