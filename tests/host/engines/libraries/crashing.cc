// A library that crashes while it is opened.

#include <cstdlib>

#include "engine_api/common/interface_version.h"
#include "halving.h"

AUDIO_ENGINE_INTERFACE_VERSION;
HALVING_DRC_LIFE;

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  Halve(samples, channels * samplesPerChannel);
}

namespace {

[[gnu::constructor]] void Crash() { std::abort(); }

}  // namespace
