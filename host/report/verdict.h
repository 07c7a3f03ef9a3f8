#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What comes of a run.
enum class Verdict { kPass, kWarn, kFail, kError, kSkip };

const char* VerdictName(Verdict verdict);  // "pass", "warn", "fail", "error", "skip"

// What kind of problem keeps a run from plainly passing.
enum class Cause {
  kInputAsItIs,
  kInputNotWhole,
  kGuardWarning,
  kReferenceUnreadable,
  kNotDelivered,
  kNotRunnable,
  kLogIncomplete,
  kGuard,
  kCopyFailed,
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
  kInputChanged,
  kReadError,
  kUnreadableInput,
  kMissingInput,
  kTimeout,
  kCrash,
  kInterrupted,
  kUsage,      // Not run as asked.
  kUnfinished  // Not yet known.
};

// The cause as a word for programs: "missing_input".
const char* CauseName(Cause cause);

// Whether the first is the worse one of the two, which then decides about the verdict.
bool IsWorse(Cause cause, Cause than);

// Whether a run with nothing worse than this is a `warn`.
bool IsWarning(Cause cause);

// One thing that keeps a run from passing.
struct Problem {
  Cause cause;
  std::string text;  // For readers, one line; names the file.
  int signal = 0;    // Which ended the routine (kCrash) or the run (kInterrupted); 0 for none.
};

// The worst of some problems, the first of several; null when there is none.
const Problem* Worst(std::span<const Problem> problems);

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
