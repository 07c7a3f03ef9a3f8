#pragma once

#include <string>
#include <vector>

// The words of a dictionary in libFuzzer's form: one in quotes a line, perhaps after a name and an
// equals sign, with \\, \" and \xAB for other bytes; lines that start with # are remarks. Throws
// std::runtime_error, with the number of the line, for any other line and for a missing file.
std::vector<std::string> ReadDictionary(const std::string& path);
