#include "engine_api/effects/audio_effect_module.h"

#include "fake_engine/effects/frame_effect.h"
#include "fake_engine/fake_engine.h"

struct AudioEffectModule::Impl {};

AudioEffectModule::AudioEffectModule() {
  FakeEngine::Current().Born(this, "AudioEffectModule", "%s", "");
}

AudioEffectModule::~AudioEffectModule() { FakeEngine::Current().Died(this); }

void AudioEffectModule::SetEqualizerEnable(bool enabled) {
  FakeEngine::Current().Call(this, "SetEqualizerEnable(%s)", enabled ? "true" : "false");
}

void AudioEffectModule::SetEqGains(float* gains, bool smooth) {
  RecordEqGains(this, gains, smooth);
}

uint32_t AudioEffectModule::Process(zuwebrtc::AudioFrame& frame) {
  return ProcessFakeFrame(this, frame);
}
