// A library that needs what nobody has.

#include "engine_api/common/interface_version.h"
#include "halving.h"

AUDIO_ENGINE_INTERFACE_VERSION;
HALVING_DRC_LIFE;

void SayWhatNobodySays();

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  SayWhatNobodySays();
  Halve(samples, channels * samplesPerChannel);
}
