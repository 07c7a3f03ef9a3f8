#include "desktop/platform/wake.h"

#include <cerrno>
#include <ctime>

namespace desktop {

void Wake::Post() {
  if (StepClock* const clock = StepClock::Current(); clock != nullptr) {
    clock->Post(m_waiter);
  } else {
    sem_post(&m_semaphore);
  }
}

void Wake::Wait() {
  if (StepClock* const clock = StepClock::Current(); clock != nullptr) {
    return clock->Wait(m_waiter, Time::max());
  }
  while (sem_wait(&m_semaphore) != 0 && errno == EINTR) {
  }
}

void Wake::WaitUntil(Time until) {
  if (StepClock* const clock = StepClock::Current(); clock != nullptr) {
    return clock->Wait(m_waiter, until);
  }
  const auto sinceStart = until.time_since_epoch();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceStart);
  const std::chrono::nanoseconds rest = sinceStart - seconds;
  const timespec time = {seconds.count(), rest.count()};
  while (sem_clockwait(&m_semaphore, CLOCK_MONOTONIC, &time) != 0 && errno == EINTR) {
  }
}

}  // namespace desktop
