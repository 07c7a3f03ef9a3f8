// One facility, whole, that calls another one, and beside it functions of the names that packaged
// libraries have.

#include <cstdlib>

#include "engine_api/common/interface_version.h"
#include "engine_api/platform/log.h"
#include "halving.h"

#define ABORTS(name)                                             \
  extern "C" __attribute__((visibility("default"))) void name(); \
  void name() { std::abort(); }                                  \
  static_assert(true, "takes the semicolon")

AUDIO_ENGINE_INTERFACE_VERSION;
HALVING_DRC_LIFE;
ABORTS(opus_encode);
ABORTS(WebRtcVad_Init);
ABORTS(speex_encoder_init);

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  OutputDebugInfo("halving %d samples", channels * samplesPerChannel);
  Halve(samples, channels * samplesPerChannel);
}
