#pragma once

#include <cstdio>

#include "process/progress.h"

namespace host {

// Carries what a child prints to the host's stdout, and what it logs to the host's stderr and to a
// log file, as it comes.
class Relay {
 public:
  Relay(FILE* log, Progress& progress);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  // In the child: its stdout and stderr lead into the relay.
  void BecomeChild();

  // In the host: this side only reads.
  void BecomeHost();

  // Carries what is there, waiting up to `seconds` for it or for `other` to become readable.
  void Wait(int other, double seconds);

  // Carries what is left of a child that has ended. Processes that it left behind may still hold
  // their end open; the rest is theirs. A line that was begun is ended.
  void Drain();

 private:
  struct Pipe {
    int read = -1;
    int write = -1;
  };
  static void Close(int& descriptor);

  // Carry what one read gives; false when there is nothing, now or for ever.
  bool CarryOutput();
  bool CarryLog();

  Pipe m_output;
  Pipe m_errors;
  FILE* m_log;
  bool m_logFailed = false;
  char m_lastOutput = '\n';
  Progress& m_progress;
};

}  // namespace host
