#pragma once

#include <string>

namespace host {

// Thrown when what was asked for cannot be done, before anything is run. audio_bench prints the
// message as one line on stderr and ends with exit code kUsage.
struct UsageError {
  std::string message;
  bool touchNothing = false;  // Not even a report is written: its file is one of the others.
};

}  // namespace host
