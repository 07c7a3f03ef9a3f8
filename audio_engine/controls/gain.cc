// Louder by 0.1 dB.

#include <cmath>

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int /*channels*/, int /*rate*/) {
  const double gain = std::pow(10, 0.1 / 20);
  for (short& sample : samples) sample = ToSample(sample * gain);
}
