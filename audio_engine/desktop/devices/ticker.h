#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "desktop/platform/wake.h"

namespace desktop {

// Takes a step again and again on a thread of its own: for work that may wait and write files,
// which a device's thread must not.
class Ticker {
 public:
  // The first step comes at once, the others `period` after one another; after a step that is late
  // the others are as much later. Throws what std::thread throws.
  Ticker(std::chrono::milliseconds period, std::function<void()> step);

  // Waits for a step that is under way; none comes afterwards. Not to be called in the step.
  ~Ticker();

  Ticker(const Ticker&) = delete;
  Ticker& operator=(const Ticker&) = delete;

 private:
  void Run();

  const std::chrono::milliseconds m_period;
  const std::function<void()> m_step;
  Wake m_wake;
  std::atomic<bool> m_ends = false;
  std::thread m_thread;
};

}  // namespace desktop
