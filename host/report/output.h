#pragma once

#include <string>

namespace host {

// Prints results on stdout, at once. The exit code: kPass, or kUsage when they cannot be delivered,
// which is told on stderr unless it is only that nobody reads on.
int PrintResults(const std::string& text);

}  // namespace host
