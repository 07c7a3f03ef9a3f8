#pragma once

#include <string>

#include "../common/visibility.h"

// Text that names a place in the source, for tags and log lines: "function (file:line)" in the
// desktop engine. Null texts count as empty. Any thread.
ENGINE_API std::string GetPlaceString(const char* function, const char* file, int line);
