#include "desktop/platform/ticker.h"

#include <algorithm>
#include <utility>

namespace desktop {

Ticker::Ticker(std::chrono::milliseconds period, std::function<void()> step)
    : m_period(period), m_step(std::move(step)), m_thread([this] { Run(); }) {}

Ticker::~Ticker() {
  {
    const std::scoped_lock lock(m_mutex);
    m_ends = true;
  }
  m_changed.notify_one();
  m_thread.join();
}

void Ticker::Run() {
  using Clock = std::chrono::steady_clock;
  Clock::time_point next = Clock::now();
  std::unique_lock lock(m_mutex);
  while (!m_ends) {
    lock.unlock();
    m_step();
    next = std::max(next + m_period, Clock::now());
    lock.lock();
    m_changed.wait_until(lock, next, [this] { return m_ends; });
  }
}

}  // namespace desktop
