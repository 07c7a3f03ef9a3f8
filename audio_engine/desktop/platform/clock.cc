#include "engine_api/platform/clock.h"

#include <chrono>

#include "desktop/platform/wake.h"

void SleepMs(int milliseconds) {
  if (milliseconds > 0) desktop::Wake().WaitFor(std::chrono::milliseconds(milliseconds));
}

uint32_t GetExactTickCount() {
  using std::chrono::milliseconds;
  const auto sinceStart = desktop::Now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<milliseconds>(sinceStart).count());
}
