#include "desktop/mixing/volume.h"

#include <algorithm>
#include <cmath>

namespace desktop {

uint32_t Volume(std::span<const int16_t> samples) {
  if (samples.empty()) return 0;
  double power = 0;
  for (const int16_t sample : samples) power += static_cast<double>(sample) * sample;
  const double db =
      10 * std::log10(power / static_cast<double>(samples.size()) / (32768.0 * 32768));
  return static_cast<uint32_t>(std::lround(std::clamp(1 + db / 60, 0.0, 1.0) * 100));
}

}  // namespace desktop
