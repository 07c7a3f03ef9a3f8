#pragma once

#include <string>

#include "base/paint.h"
#include "suite/suite_journal.h"

namespace host {

// What is said at the end of a suite in a folder, whose journal this is: a table of what did not
// pass, with reasons; the counts; where the results are.
std::string SuiteSummary(const SuiteJournal& journal, const std::string& folder,
                         const Paint& paint);

}  // namespace host
