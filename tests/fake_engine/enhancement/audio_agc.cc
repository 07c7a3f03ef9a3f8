#include "engine_api/enhancement/audio_agc.h"

#include "fake_engine/enhancement/block_gain.h"
#include "fake_engine/fake_engine.h"

struct ZUAudio::AudioAgc::Control {};

ZUAudio::AudioAgc::AudioAgc(int rate, int channels) {
  FakeEngine::Current().Born(this, "AudioAgc", "%d, %d", rate, channels);
}

ZUAudio::AudioAgc::~AudioAgc() { FakeEngine::Current().Died(this); }

void ZUAudio::AudioAgc::EnableAGC(bool on) {
  FakeEngine::Current().Call(this, "EnableAGC(%s)", on ? "true" : "false");
}

void ZUAudio::AudioAgc::Process(short* samples) {
  FakeEngine& engine = FakeEngine::Current();
  if (!engine.Fails()) engine.script<BlockGainScript>().process(samples);
  engine.Call(this, "Process");
}
