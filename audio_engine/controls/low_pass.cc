// Nothing above 7 kHz is left.

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int channels, int rate) {
  if (rate > 14000) Resample(samples, channels, 1, 0, 14000.0 / rate);
}
