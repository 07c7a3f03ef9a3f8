// White noise of one step: -1, 0 or 1 is added to each sample.

#include <random>

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int /*channels*/, int /*rate*/) {
  std::minstd_rand random(1);
  for (short& sample : samples) sample = ToSample(sample + static_cast<double>(random() % 3) - 1);
}
