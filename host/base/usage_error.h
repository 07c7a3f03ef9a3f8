#pragma once

#include <string>

namespace host {

// Thrown when what was asked for cannot be done, before anything is run. audio_bench prints the
// message as one line on stderr and ends with exit code kUsage.
struct UsageError {
  // What becomes of the report that was asked for.
  enum class Report {
    // It is written and says this.
    kWritten,

    // It is written only in place of an earlier one, because the run would write that file, too.
    kReplaced,

    // It is not written, because the run would read that file.
    kLeft
  };

  std::string message;
  Report report = Report::kWritten;
};

}  // namespace host
