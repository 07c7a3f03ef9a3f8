#pragma once

#include <string>

namespace host {

// Writes results.json, results.csv and junit.xml into the folder of a suite at `path`, from what
// has ended so far; each is there whole or as it was. Throws UsageError when that fails.
void WriteResults(const std::string& path);

}  // namespace host
