#pragma once

#include "harness/declared.h"

// Converts `count` 16-bit samples to floats in the same range, -32768 to 32767. Nothing happens
// when count is not positive. The arrays do not overlap.
HELPER(void, ConvertToFloatForWebrtc, const short* src, float* dst, int count);

// Converts `count` floats to 16-bit samples: truncated toward zero to 32-bit integers, of which the
// low 16 bits are kept. What no 32-bit integer holds, and NaN, becomes 0. Nothing happens when
// count is not positive. The arrays do not overlap.
HELPER(void, ConvertToShortForWebrtc, const float* src, short* dst, int count);
