#pragma once

#include <string>

#include "compare/result_set.h"

namespace host {

// Reads what can be compared: the folder of a suite's results, its results.json, the report of a
// run, or an exported baseline. Throws UsageError that names the file and what is wrong with it,
// whatever is in it.
ResultSet ReadResultSet(const std::string& path);

// The same from the text of such a file; `path` is for messages.
ResultSet ParseResultSet(const std::string& text, const std::string& path);

}  // namespace host
