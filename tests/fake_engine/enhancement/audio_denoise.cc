#include "fake_engine/enhancement/audio_denoise.h"

#include "engine_api/enhancement/audio_denoise.h"
#include "fake_engine/fake_engine.h"

struct CAudioDenoise::Impl {
  int samples;
};

CAudioDenoise::CAudioDenoise(int sampleRate, int channels)
    : m_impl(new Impl{static_cast<int>(static_cast<double>(sampleRate) * channels * 10 / 1000)}) {
  FakeEngine::Current().Born(this, "CAudioDenoise", "%d, %d", sampleRate, channels);
}

CAudioDenoise::~CAudioDenoise() { FakeEngine::Current().Died(this); }

void CAudioDenoise::EnableLightDenoise(bool enable) {
  FakeEngine::Current().Call(this, "EnableLightDenoise(%s)", enable ? "true" : "false");
}

void CAudioDenoise::Process(short* samples) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "Process");
  if (!engine.Fails()) engine.script<DenoiseScript>().process(samples, m_impl->samples);
}
