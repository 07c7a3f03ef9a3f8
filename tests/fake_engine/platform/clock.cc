#include "engine_api/platform/clock.h"

#include "fake_engine/fake_engine.h"

void SleepMs(int milliseconds) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("SleepMs(%d)", milliseconds);
  if (milliseconds > 0) engine.nowMs += static_cast<uint32_t>(milliseconds);
  if (engine.onSleep) engine.onSleep();
}

uint32_t GetExactTickCount() {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("GetExactTickCount() = %u", engine.nowMs);
  return engine.nowMs;
}
