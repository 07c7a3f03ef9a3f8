#pragma once

#include <cstddef>
#include <cstdint>

#include "../common/visibility.h"

// Sets `length` samples, from `samples` on, to `value`; nothing for a length of 0. Any thread.
extern "C" ENGINE_API void WebRtcSpl_MemSetW16(int16_t* samples, int16_t value, size_t length)
    ENGINE_C_NAME(WebRtcSpl_MemSetW16);
