// One sample in 40 is zero.

#include <algorithm>
#include <cstddef>

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int channels, int /*rate*/) {
  const auto width = static_cast<size_t>(channels);
  for (size_t i = 0; i + width <= samples.size(); i += 40 * width) {
    std::fill_n(samples.begin() + static_cast<long>(i), width, short{0});
  }
}
