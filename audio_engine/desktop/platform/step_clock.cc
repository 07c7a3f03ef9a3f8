#include "desktop/platform/step_clock.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace desktop {

namespace {

std::atomic<StepClock*> g_clock = nullptr;

// Other threads than the engine's may wait as well; a clock does not stand still for their work.
thread_local bool t_takesPart = false;

}  // namespace

Time Now() {
  StepClock* const clock = StepClock::Current();
  return clock != nullptr ? clock->Now() : std::chrono::steady_clock::now();
}

std::thread StartThread(std::function<void()> body) {
  StepClock* const clock = StepClock::Current();
  if (clock == nullptr) return std::thread(std::move(body));
  clock->Enter();
  try {
    return std::thread([clock, body = std::move(body)] {
      t_takesPart = true;
      body();
      clock->Leave();
    });
  } catch (...) {
    clock->Leave();
    throw;
  }
}

StepClock::StepClock() : m_now(std::chrono::steady_clock::now()) {
  Enter();
  t_takesPart = true;
  g_clock = this;
}

StepClock::~StepClock() {
  g_clock = nullptr;
  t_takesPart = false;
}

StepClock* StepClock::Current() { return g_clock; }

Time StepClock::Now() {
  const std::scoped_lock lock(m_mutex);
  return m_now;
}

void StepClock::Enter() {
  const std::scoped_lock lock(m_mutex);
  ++m_working;
}

void StepClock::Leave() {
  const std::scoped_lock lock(m_mutex);
  StopWork();
}

void StepClock::Wait(Waiter& waiter, Time until) {
  std::unique_lock lock(m_mutex);
  if (waiter.posts > 0) {
    --waiter.posts;
    return;
  }
  waiter.waits = true;
  waiter.until = until;
  m_waiters.push_back(&waiter);
  if (!t_takesPart) ++m_working;
  StopWork();
  waiter.released.wait(lock, [&] { return !waiter.waits; });
  if (!t_takesPart) StopWork();
}

void StepClock::Post(Waiter& waiter) {
  const std::scoped_lock lock(m_mutex);
  if (waiter.waits) {
    Release(waiter);
  } else {
    ++waiter.posts;
  }
}

// What is released works from now on, even before its thread goes on.
void StepClock::Release(Waiter& waiter) {
  waiter.waits = false;
  std::erase(m_waiters, &waiter);
  ++m_working;
  waiter.released.notify_one();
}

// One thread at a time, so that what happens at the same time happens in the same order in each
// run.
void StepClock::StopWork() {
  if (--m_working > 0) return;
  const auto next =
      std::min_element(m_waiters.begin(), m_waiters.end(),
                       [](const Waiter* a, const Waiter* b) { return a->until < b->until; });
  if (next == m_waiters.end() || (*next)->until == Time::max()) return;
  m_now = std::max(m_now, (*next)->until);
  Release(**next);
}

}  // namespace desktop
