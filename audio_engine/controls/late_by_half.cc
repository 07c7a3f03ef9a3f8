// Half a sample late.

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int channels, int /*rate*/) {
  Resample(samples, channels, 1, -0.5, 1);
}
