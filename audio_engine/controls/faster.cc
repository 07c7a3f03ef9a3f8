// Faster, and so higher, by 0.1 %.

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int channels, int /*rate*/) {
  Resample(samples, channels, 1.001, 0, 1 / 1.001);
}
