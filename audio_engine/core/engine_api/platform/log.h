#pragma once

#include "../common/visibility.h"

// Writes one printf-style line to the engine's log. The line needs no newline of its own. Any
// thread.
ENGINE_API void OutputDebugInfo(const char* format, ...) __attribute__((format(printf, 1, 2)));
