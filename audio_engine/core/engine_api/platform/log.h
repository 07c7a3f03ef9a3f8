#pragma once

#include "../common/visibility.h"

// Writes one printf-style line to the engine's log; it needs no newline of its own. A line that
// cannot be written is lost without a word. Any thread.
ENGINE_API void OutputDebugInfo(const char* format, ...) __attribute__((format(printf, 1, 2)));
