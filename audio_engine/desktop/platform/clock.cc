#include "engine_api/platform/clock.h"

#include <chrono>
#include <thread>

void SleepMs(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

uint32_t GetExactTickCount() {
  using std::chrono::milliseconds;
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<milliseconds>(sinceStart).count());
}
