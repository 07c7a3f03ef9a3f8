#include "engine_api/enhancement/webrtc_agc.h"

#include "fake_engine/enhancement/block_gain.h"
#include "fake_engine/fake_engine.h"

struct ZUAudio::WebrtcAgc::Control {};

ZUAudio::WebrtcAgc::WebrtcAgc(int rate, int channels) {
  FakeEngine::Current().Born(this, "WebrtcAgc", "%d, %d", rate, channels);
}

ZUAudio::WebrtcAgc::~WebrtcAgc() { FakeEngine::Current().Died(this); }

void ZUAudio::WebrtcAgc::EnableAGC(bool on) {
  FakeEngine::Current().Call(this, "EnableAGC(%s)", on ? "true" : "false");
}

void ZUAudio::WebrtcAgc::ProcessCapture(short* samples, bool echo) {
  FakeEngine& engine = FakeEngine::Current();
  if (!engine.Fails()) engine.script<BlockGainScript>().process(samples);
  engine.Call(this, "ProcessCapture(%s)", echo ? "true" : "false");
}
