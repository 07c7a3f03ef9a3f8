#pragma once

#include <string>

#include "suite/suite_journal.h"

namespace host {

// Writes results.json, results.csv and junit.xml into the folder of a suite at `path`, whose
// journal this is, from what has ended so far; each is there whole or as it was. Throws UsageError
// when that fails.
void WriteResults(const SuiteJournal& journal, const std::string& path);

}  // namespace host
