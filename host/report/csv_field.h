#pragma once

#include <string>

namespace host {

// A field of a table as RFC 4180 has it: between quotes where it needs them.
std::string CsvField(const std::string& text);

}  // namespace host
