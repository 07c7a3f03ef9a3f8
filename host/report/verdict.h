#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// What comes of a run.
enum class Verdict { kPass, kWarn, kFail, kError, kSkip };

const char* VerdictName(Verdict verdict);  // "pass", "warn", "fail", "error", "skip"

// What kind of problem keeps a run from plainly passing. The worse of two decides about the
// verdict; they are listed from bad to worse.
enum class Cause {
  kInputAsItIs,  // From here on warn, exit code 0.
  kInputNotWhole,
  kNotDelivered,   // Error, exit code 2.
  kNotRunnable,    // Skipped.
  kLogIncomplete,  // Error, exit code 2.
  kCopyFailed,     // From here on fail, exit code 1.
  kSamplesNotFinite,
  kOutputNotMeasured,
  kOutputChanged,
  kOutputUnreadable,
  kOutputNotWhole,
  kOutputFormat,
  kOutputEmpty,
  kOutputStale,
  kOutputAbsent,
  kWriteError,
  kInputFormat,
  kInputTooShort,
  kArgument,
  kInputChanged,  // From here on error; of inputs exit code 3.
  kReadError,
  kUnreadableInput,
  kMissingInput,
  kTimeout,  // Exit code 4.
  kCrash,
  kInterrupted,  // Exit code 128 plus the signal.
  kUsage,        // Not run as asked; exit code 2.
  kUnfinished    // Not yet known.
};

// The cause as a word for programs: "missing_input".
const char* CauseName(Cause cause);

// Whether a run with nothing worse than this is a `warn`.
bool IsWarning(Cause cause);

// One thing that keeps a run from passing.
struct Problem {
  Cause cause;
  std::string text;  // For readers, one line; names the file.
  int signal = 0;    // Which ended the routine (kCrash) or the run (kInterrupted); 0 for none.
};

// A verdict, its exit code, and why it is no plain pass.
struct Judgement {
  Verdict verdict = Verdict::kPass;
  int exitCode = 0;
  std::string reason;             // The worst problem in one line, and how many more there are.
  std::vector<Problem> problems;  // All of them, in the order in which they were found.

  // The one that decided; null for a pass.
  const Problem* Worst() const;
};

// The verdict on a run with these problems: pass when there are none.
Judgement Judge(std::vector<Problem> problems);

}  // namespace host
