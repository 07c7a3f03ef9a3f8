#pragma once

#include <span>
#include <string>

#include "report/report.h"

namespace host {

// A list of files, which all have its pattern, as a few lines of a report: how many there are and
// what is wrong with how many; then the worst five by name, and the loudest one where figures of
// its files were asked for.
std::string ListLines(const std::string& kind, std::span<const FileReport* const> files);

}  // namespace host
