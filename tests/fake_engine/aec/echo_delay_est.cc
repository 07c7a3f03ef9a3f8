#include "fake_engine/aec/echo_delay_est.h"

#include <string>

#include "engine_api/aec/echo_delay_est.h"
#include "fake_engine/fake_engine.h"

struct CEchoDelayEst::Estimator {};

CEchoDelayEst::CEchoDelayEst(int rate, int channels) {
  FakeEngine::Current().Born(this, "CEchoDelayEst", "%d, %d", rate, channels);
}

CEchoDelayEst::~CEchoDelayEst() { FakeEngine::Current().Died(this); }

// With the first sample, which tells the two ends apart.
int CEchoDelayEst::ProcessFar(const short* samples, int count) {
  FakeEngine::Current().Call(this, "ProcessFar(%d.., %d)", samples[0], count);
  return FakeEngine::Current().Answer(0, -1);
}

int CEchoDelayEst::ProcessNear(const short* samples, int count) {
  FakeEngine::Current().Call(this, "ProcessNear(%d.., %d)", samples[0], count);
  return FakeEngine::Current().Answer(0, -1);
}

int CEchoDelayEst::GetDelay() {
  FakeEngine& engine = FakeEngine::Current();
  const int delay = engine.script<EchoDelayEstScript>().delay();
  engine.Call(this, "GetDelay() = %d", delay);
  return delay;
}
