#pragma once

#include <semaphore.h>

#include <cerrno>
#include <chrono>
#include <ctime>

namespace desktop {

// Wakes one thread from another that must not wait itself, a device's for example.
class Wake {
 public:
  Wake() { sem_init(&m_semaphore, 0, 0); }
  ~Wake() { sem_destroy(&m_semaphore); }
  Wake(const Wake&) = delete;
  Wake& operator=(const Wake&) = delete;

  void Post() { sem_post(&m_semaphore); }

  // Waits for one Post.
  void Wait() {
    while (sem_wait(&m_semaphore) != 0 && errno == EINTR) {
    }
  }

  // Waits for one Post, but no longer than `limit`, whatever becomes of the time of day.
  void WaitFor(std::chrono::milliseconds limit) {
    timespec until;
    clock_gettime(CLOCK_MONOTONIC, &until);
    const auto nanoseconds = until.tv_nsec + limit.count() % 1000 * 1'000'000;
    until.tv_sec += limit.count() / 1000 + nanoseconds / 1'000'000'000;
    until.tv_nsec = nanoseconds % 1'000'000'000;
    while (sem_clockwait(&m_semaphore, CLOCK_MONOTONIC, &until) != 0 && errno == EINTR) {
    }
  }

 private:
  sem_t m_semaphore;
};

}  // namespace desktop
