#pragma once

#include "process/signals.h"

namespace host {

// Returns the seconds of a clock that only runs forward.
double Now();

// What ends a run from outside: its time is up, or somebody asks the host to end. Whatever takes
// long looks at it again and again.
class Limits {
 public:
  enum class Stop { kNone, kTimedOut, kInterrupted };

  // The time starts now.
  Limits(const HostSignals& signals, double seconds);

  // Gives this much time from now on, to a run whose time was up as well.
  void Restart(double seconds);

  // Returns the first reason to stop, and remembers it.
  Stop Check();

  // As Check, whatever time is left.
  bool Interrupted();

  // Returns the seconds that are left; never less than 0.
  double Left() const;

  // Returns the signal by which somebody asked the host to end; 0 for none.
  int interruption() const { return m_interruption; }
  const HostSignals& signals() const { return m_signals; }

 private:
  const HostSignals& m_signals;
  double m_end;
  Stop m_stop = Stop::kNone;
  int m_interruption = 0;
};

}  // namespace host
