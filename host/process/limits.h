#pragma once

#include "process/signals.h"

namespace host {

// Seconds of a clock that only runs forward.
double Now();

// What ends a run from outside: its time is up, or somebody asks the host to end. To be looked at
// again and again by whatever takes long.
class Limits {
 public:
  enum class Stop { kNone, kTimedOut, kInterrupted };

  // The time starts now.
  Limits(const HostSignals& signals, double seconds);

  // Gives this much time from now on, to a run whose time was up as well.
  void Restart(double seconds);

  // Remembers the first reason to stop.
  Stop Check();

  // As Check, whatever time is left.
  bool Interrupted();

  // Something that ends more than `seconds` from now is late; never less than 0.
  double Left() const;

  // The signal by which somebody asked the host to end; 0 for none.
  int interruption() const { return m_interruption; }
  const HostSignals& signals() const { return m_signals; }

 private:
  const HostSignals& m_signals;
  double m_end;
  Stop m_stop = Stop::kNone;
  int m_interruption = 0;
};

}  // namespace host
