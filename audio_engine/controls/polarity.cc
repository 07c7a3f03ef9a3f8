// All samples have the other sign.

#include "controls/damage.h"

void controls::Damage(std::vector<short>& samples, int /*channels*/, int /*rate*/) {
  for (short& sample : samples) sample = ToSample(-sample);
}
