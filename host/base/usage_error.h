#pragma once

#include <string>

namespace host {

// Thrown when what was asked for cannot be done, before anything is run. audio_bench prints the
// message as one line on stderr and ends with exit code kUsage.
struct UsageError {
  // What becomes of the report that was asked for.
  enum class Report {
    kWritten,   // It says this.
    kReplaced,  // Only where an earlier one is: its file is also one that the run would write.
    kLeft       // Its file is also one that the run would read.
  };

  std::string message;
  Report report = Report::kWritten;
};

}  // namespace host
