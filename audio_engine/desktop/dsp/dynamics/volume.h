#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "desktop/common/counts.h"

namespace desktop {

// The level of `count` samples as a volume that is shown: 0 for -60 dB of full scale (RMS) and
// below, 100 for full scale.
inline uint32_t VolumeOf(const short* samples, size_t count) {
  double sum = 0;
  for (size_t i = 0; i < count; ++i) sum += samples[i] * samples[i];
  if (sum <= 0) return 0;
  const double level = 10 * std::log10(sum / Real(count) / (32768.0 * 32768.0));
  return static_cast<uint32_t>(std::clamp((level + 60) / 60, 0.0, 1.0) * 100);
}

}  // namespace desktop
