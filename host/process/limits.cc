#include "process/limits.h"

#include <algorithm>
#include <chrono>

namespace host {

double Now() {
  const auto time = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(time).count();
}

Limits::Limits(const HostSignals& signals, double seconds)
    : m_signals(signals), m_end(Now() + seconds) {}

Limits::Stop Limits::Check() {
  const int signal = m_signals.TakeInterruption();
  if (m_stop != Stop::kNone) return m_stop;
  if (signal != 0) {
    m_interruption = signal;
    m_stop = Stop::kInterrupted;
  } else if (Left() <= 0) {
    m_stop = Stop::kTimedOut;
  }
  return m_stop;
}

double Limits::Left() const { return std::max(0.0, m_end - Now()); }

}  // namespace host
