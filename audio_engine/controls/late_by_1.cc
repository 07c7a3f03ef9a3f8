// One sample late.

#include <cstddef>

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int channels, int /*rate*/) {
  const size_t size = samples.size();
  samples.insert(samples.begin(), static_cast<size_t>(channels), 0);
  samples.resize(size);
}
