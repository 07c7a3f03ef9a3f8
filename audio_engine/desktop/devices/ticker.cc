#include "desktop/devices/ticker.h"

#include <algorithm>
#include <utility>

namespace desktop {

Ticker::Ticker(std::chrono::milliseconds period, std::function<void()> step)
    : m_period(period), m_step(std::move(step)), m_thread(StartThread([this] { Run(); })) {}

Ticker::~Ticker() {
  m_ends = true;
  m_wake.Post();
  m_thread.join();
}

void Ticker::Run() {
  Time next = Now();
  while (!m_ends) {
    m_step();
    next = std::max(next + m_period, Now());
    while (!m_ends && Now() < next) m_wake.WaitUntil(next);
  }
}

}  // namespace desktop
