// Left and right are exchanged; one channel alone stays as it is.

#include <cstddef>
#include <utility>

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int channels, int /*rate*/) {
  const auto width = static_cast<size_t>(channels);
  if (width < 2) return;
  for (size_t i = 0; i + width <= samples.size(); i += width) std::swap(samples[i], samples[i + 1]);
}
