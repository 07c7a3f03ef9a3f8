#pragma once

#include <chrono>

#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"

// Waits until `done()`, for 20 s of the engine's clock at most. False when it did not come.
template <typename Done>
bool WaitUntil(const Done& done) {
  const desktop::Time limit = desktop::Now() + std::chrono::seconds(20);
  while (!done()) {
    if (desktop::Now() > limit) return false;
    SleepMs(1);
  }
  return true;
}
