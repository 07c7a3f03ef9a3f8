#include "engine_api/effects/audio_karaoke_effect_module.h"

#include "fake_engine/effects/frame_effect.h"
#include "fake_engine/fake_engine.h"

struct AudioKaraokeEffectModule::Impl {};

AudioKaraokeEffectModule::AudioKaraokeEffectModule() {
  FakeEngine::Current().Born(this, "AudioKaraokeEffectModule", "%s", "");
}

AudioKaraokeEffectModule::~AudioKaraokeEffectModule() { FakeEngine::Current().Died(this); }

void AudioKaraokeEffectModule::EnableDrc(bool enabled) {
  FakeEngine::Current().Call(this, "EnableDrc(%s)", enabled ? "true" : "false");
}

void AudioKaraokeEffectModule::EnableEqReverb(bool enabled) {
  FakeEngine::Current().Call(this, "EnableEqReverb(%s)", enabled ? "true" : "false");
}

void AudioKaraokeEffectModule::SetEqualizerEnable(bool enabled) {
  FakeEngine::Current().Call(this, "SetEqualizerEnable(%s)", enabled ? "true" : "false");
}

void AudioKaraokeEffectModule::SetEqGains(float* gains, bool smooth) {
  RecordEqGains(this, gains, smooth);
}

void AudioKaraokeEffectModule::EnableReverbFv3(bool enabled) {
  FakeEngine::Current().Call(this, "EnableReverbFv3(%s)", enabled ? "true" : "false");
}

void AudioKaraokeEffectModule::SetReverbFv3Param(NreverbFv3Parameter parameter) {
  const float fields[] = {parameter.Factor, parameter.Wet,   parameter.Dry,   parameter.Feedback,
                          parameter.Damp1,  parameter.Damp2, parameter.Damp3, parameter.ReverbTime,
                          parameter.Width,  parameter.Delay};
  FakeEngine::Current().Call(this, "SetReverbFv3Param(%s)", FloatList(fields, 10).c_str());
}

void AudioKaraokeEffectModule::EnableLimiter(bool enabled) {
  FakeEngine::Current().Call(this, "EnableLimiter(%s)", enabled ? "true" : "false");
}

void AudioKaraokeEffectModule::SetLimiterParameter(LimiterParameter parameter) {
  const float fields[] = {parameter.fCeiling,        parameter.fThreshold, parameter.fPreGain,
                          parameter.fRelease,        parameter.fAttack,    parameter.fLookahead,
                          parameter.fLookaheadRatio, parameter.fRMS,       parameter.fFactor,
                          parameter.fStLink,         parameter.fType};
  FakeEngine::Current().Call(this, "SetLimiterParameter(%s)", FloatList(fields, 11).c_str());
}

uint32_t AudioKaraokeEffectModule::Process(zuwebrtc::AudioFrame& frame) {
  return ProcessFakeFrame(this, frame);
}
