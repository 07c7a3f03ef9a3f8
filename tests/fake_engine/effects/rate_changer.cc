#include "fake_engine/effects/rate_changer.h"

#include "engine_api/effects/rate_changer.h"
#include "fake_engine/fake_engine.h"

struct RateChanger::Impl {};

RateChanger::RateChanger(bool keepPitch) {
  FakeEngine::Current().Born(this, "RateChanger", "%s", keepPitch ? "true" : "false");
}

RateChanger::~RateChanger() { FakeEngine::Current().Died(this); }

void RateChanger::SetEnabled(bool enabled) {
  FakeEngine::Current().Call(this, "SetEnabled(%s)", enabled ? "true" : "false");
}

void RateChanger::SetRatio(double ratio) {
  FakeEngine::Current().Call(this, "SetRatio(%g)", ratio);
}

void RateChanger::SetFsAndCh(int rate, int channels) {
  FakeEngine::Current().Call(this, "SetFsAndCh(%d, %d)", rate, channels);
}

void RateChanger::Process(short* samples, int samplesPerChannel, int channels, std::string& out) {
  FakeEngine& engine = FakeEngine::Current();
  const std::string from = engine.Buffer(samples);
  const size_t before = out.size();
  if (!engine.Fails()) {
    engine.script<RateChangerScript>().process(samples, samplesPerChannel * channels, out);
  }
  engine.Call(this, "Process(%s, %d, %d, %zu bytes) = %zu bytes", from.c_str(), samplesPerChannel,
              channels, before, out.size());
}
