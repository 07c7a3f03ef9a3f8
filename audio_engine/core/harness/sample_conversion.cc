#include "harness/sample_conversion.h"

#include <cmath>
#include <cstdint>

// Deliberate: no scaling, -32768 stays -32768. The callers feed processing that works in the range
// of 16 bits; divided by 32768 the samples would be next to silence there.
void ConvertToFloatForWebrtc(const short* src, float* dst, int count) {
  for (int i = 0; i < count; ++i) dst[i] = static_cast<float>(src[i]);
}

// Deliberate: truncated, and the low 16 bits without clamping, so that 32768 becomes -32768. With
// clamping, an engine that leaves the 16-bit range would clip in what the bench writes instead of
// wrapping.
void ConvertToShortForWebrtc(const float* src, short* dst, int count) {
  constexpr float kIntLimit = 0x1p31F;  // The first power of two that no 32-bit integer holds.
  for (int i = 0; i < count; ++i) {
    const bool fits = std::fabs(src[i]) < kIntLimit;
    dst[i] = static_cast<short>(fits ? static_cast<int32_t>(src[i]) : 0);
  }
}
