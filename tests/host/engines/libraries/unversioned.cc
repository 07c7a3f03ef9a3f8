// A facility of a library that does not say on which interface it was built.

#include "halving.h"

HALVING_DRC_LIFE;

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  Halve(samples, channels * samplesPerChannel);
}
