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

void Limits::Restart(double seconds) {
  m_end = Now() + seconds;
  if (m_stop == Stop::kTimedOut) m_stop = Stop::kNone;
}

Limits::Stop Limits::Check() {
  if (!Interrupted() && m_stop == Stop::kNone && Left() <= 0) m_stop = Stop::kTimedOut;
  return m_stop;
}

bool Limits::Interrupted() {
  const int signal = m_signals.TakeInterruption();
  if (m_stop == Stop::kNone && signal != 0) {
    m_interruption = signal;
    m_stop = Stop::kInterrupted;
  }
  return m_stop == Stop::kInterrupted;
}

double Limits::Left() const { return std::max(0.0, m_end - Now()); }

}  // namespace host
