// A facility of a library that was built on an interface of the future.

#include "engine_api/common/interface_version.h"
#include "halving.h"

AUDIO_ENGINE_INTERFACE_OF(999);
HALVING_DRC_LIFE;

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  Halve(samples, channels * samplesPerChannel);
}
