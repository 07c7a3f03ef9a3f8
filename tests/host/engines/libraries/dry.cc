// All that one routine asks for: a reverberation that leaves the samples alone.

#include "engine_api/common/interface_version.h"
#include "engine_api/effects/audio_dsp_processor.h"

AUDIO_ENGINE_INTERFACE_VERSION;

struct CAudioDspProcessor::Impl {};
CAudioDspProcessor::CAudioDspProcessor() = default;
CAudioDspProcessor::~CAudioDspProcessor() = default;

void CAudioDspProcessor::SetReverbExEnable(bool /*enabled*/) {}

int CAudioDspProcessor::Process(char* /*samples*/, int samplesPerChannel, int /*sampleRate*/,
                                int /*channels*/, int /*sampleSize*/) {
  return samplesPerChannel;
}
