#include "fake_engine/effects/audio_dsp_processor.h"

#include "engine_api/effects/audio_dsp_processor.h"
#include "fake_engine/fake_engine.h"

struct CAudioDspProcessor::Impl {};

CAudioDspProcessor::CAudioDspProcessor() {
  FakeEngine::Current().Born(this, "CAudioDspProcessor", "%s", "");
}

CAudioDspProcessor::~CAudioDspProcessor() { FakeEngine::Current().Died(this); }

void CAudioDspProcessor::SetReverbExEnable(bool enabled) {
  FakeEngine::Current().Call(this, "SetReverbExEnable(%s)", enabled ? "true" : "false");
}

int CAudioDspProcessor::Process(char* samples, int samplesPerChannel, int sampleRate, int channels,
                                int sampleSize) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "Process(%d, %d, %d, %d)", samplesPerChannel, sampleRate, channels, sampleSize);
  if (engine.Fails()) return -1;
  engine.script<AudioDspProcessorScript>().process(reinterpret_cast<short*>(samples),
                                                   samplesPerChannel * channels);
  return samplesPerChannel;
}
