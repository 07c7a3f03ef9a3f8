#pragma once

#include <string>

#include "compare/result_set.h"
#include "compare/results_parser.h"

namespace host {

// Reads what can be compared: the folder of a suite's results, its results.json, the report of a
// run, or an exported baseline. Throws UsageError that names the file and what is wrong with it,
// whatever is in it. The file is read block by block.
ResultSet ReadResultSet(const std::string& path);

// The same, with each event of the document also for `listener`, before it is looked at here; and
// without figures, guards and outputs where only verdicts are kept.
ResultSet ReadResultSet(const std::string& path, Json::json_sax_t& listener, KeptResults kept);

// The file of what `path` names, which may be the folder of results. Throws UsageError.
std::string ResultsFile(const std::string& path);

// The same from the text of such a file; `path` is for messages.
ResultSet ParseResultSet(const std::string& text, const std::string& path);

}  // namespace host
