#pragma once

#include <cstdio>
#include <functional>
#include <string_view>

#include "process/limits.h"
#include "process/progress.h"

namespace host {

// Who else hears what a child prints and logs, in the parts in which it comes.
struct Hearing {
  std::function<void(std::string_view bytes)> output;
  std::function<void(std::string_view bytes)> log;
};

// Carries what a child prints to the host's stdout, and what it logs to the host's stderr and to a
// log file, as it comes. What nobody reads holds up the child, never the host.
class Relay {
 public:
  Relay(FILE* log, const Hearing& hearing, Progress& progress);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  // Is called in the child, whose stdout and stderr lead into the relay from then on.
  void BecomeChild();

  // Is called in the host, which only reads.
  void BecomeHost();

  // Carries what is there, waiting up to `seconds` for it or for `other` to become readable.
  void Wait(int other, double seconds);

  // Forwards what remains of a child that has ended, without waiting for processes that inherited
  // the pipe, and for as long as the limits allow, then `lastWords` as the end of the log. A line
  // that was begun is ended. False when stdout has not taken everything.
  bool Drain(Limits& limits, std::string_view lastWords);

  // Returns the errno of the first write to the log file that failed; 0 for none.
  int logFailure() const { return m_logFailure; }

 private:
  struct Pipe {
    int read = -1;
    int write = -1;
  };
  static void Close(int& descriptor);

  // Carry what one read gives, and return false when there is nothing, now or for ever.
  bool CarryOutput();
  bool CarryLog();
  void AddToLog(std::string_view text);

  Pipe m_output;
  Pipe m_errors;
  FILE* m_log;
  const Hearing& m_hearing;
  int m_logFailure = 0;
  char m_lastOutput = '\n';
  char m_lastLogged = '\n';
  Progress& m_progress;
};

}  // namespace host
