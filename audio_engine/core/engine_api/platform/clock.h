#pragma once

#include <cstdint>

#include "../common/visibility.h"

// Blocks the calling thread for at least `milliseconds`; nothing happens when that is not positive.
// Any thread.
ENGINE_API void SleepMs(int milliseconds);

// Milliseconds of a monotonic clock since an arbitrary start; wraps around after 49.7 days. Any
// thread.
ENGINE_API uint32_t GetExactTickCount();
