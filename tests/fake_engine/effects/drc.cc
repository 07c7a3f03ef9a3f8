#include "fake_engine/effects/drc.h"

#include "engine_api/effects/drc.h"
#include "fake_engine/fake_engine.h"

struct Drc::Impl {};

Drc::Drc() { FakeEngine::Current().Born(this, "Drc", "%s", ""); }

Drc::~Drc() { FakeEngine::Current().Died(this); }

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Call(this, "Process(%d, %d)", channels, samplesPerChannel);
  if (!engine.Fails()) engine.script<DrcScript>().process(samples, channels * samplesPerChannel);
}
