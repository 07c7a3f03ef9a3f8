#pragma once

#include <semaphore.h>

#include <chrono>

#include "desktop/platform/step_clock.h"

namespace desktop {

// Wakes one thread from another that must not wait itself, a device's for example.
class Wake {
 public:
  Wake() { sem_init(&m_semaphore, 0, 0); }
  ~Wake() { sem_destroy(&m_semaphore); }
  Wake(const Wake&) = delete;
  Wake& operator=(const Wake&) = delete;

  void Post();

  // Waits for one Post.
  void Wait();

  // Waits for one Post, but no longer than `limit`, or until a time. A change of the time of day
  // does not matter.
  void WaitFor(std::chrono::milliseconds limit) { WaitUntil(Now() + limit); }
  void WaitUntil(Time until);

 private:
  sem_t m_semaphore;
  // Takes the place of the semaphore while there is a StepClock.
  StepClock::Waiter m_waiter;
};

}  // namespace desktop
