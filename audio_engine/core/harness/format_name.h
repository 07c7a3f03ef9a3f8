#pragma once

#include <string>

namespace harness {

// A file name of any length from a printf format.
std::string FormatName(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace harness
