#pragma once

#include <csignal>

namespace host {

// While this object lives, the end of a child and requests to end the host (INT, TERM, HUP) are
// read from a descriptor instead of being acted on.
class HostSignals {
 public:
  HostSignals();
  ~HostSignals();
  HostSignals(const HostSignals&) = delete;
  HostSignals& operator=(const HostSignals&) = delete;

  // This descriptor is readable when something has arrived.
  int descriptor() const { return m_descriptor; }

  // Returns the request to end that has arrived; 0 for none.
  int TakeInterruption() const;

  // Is called in a child: sets all signals as a program expects them.
  void RestoreInChild() const;

 private:
  sigset_t m_before;
  int m_descriptor;
};

}  // namespace host
