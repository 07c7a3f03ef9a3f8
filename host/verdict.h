#pragma once

#include <string>

// What comes of a run.
enum class Verdict { kPass, kFail, kError, kSkip };

const char* VerdictName(Verdict verdict);  // "pass", "fail", "error", "skip"

// The host's exit codes.
namespace exit_code {
inline constexpr int kPass = 0;
inline constexpr int kFail = 1;
inline constexpr int kUsage = 2;  // Also when nothing can be run, or the results not be delivered.
inline constexpr int kInput = 3;  // Missing or unreadable.
inline constexpr int kCrash = 4;  // Or a time-out.
inline constexpr int kSignal = 128;  // Plus the signal that interrupted the run.
inline constexpr int kSkip = 77;
}  // namespace exit_code

// A verdict, its exit code, and why it is no pass.
struct Judgement {
  Verdict verdict = Verdict::kPass;
  int exitCode = exit_code::kPass;
  std::string reason;
};

inline Judgement Fail(std::string reason) {
  return {Verdict::kFail, exit_code::kFail, std::move(reason)};
}
inline Judgement Skip(std::string reason) {
  return {Verdict::kSkip, exit_code::kSkip, std::move(reason)};
}
inline Judgement Error(int exitCode, std::string reason) {
  return {Verdict::kError, exitCode, std::move(reason)};
}

// What cannot be done as asked, before anything is run: one line for the user, exit code 2.
struct UsageError {
  std::string message;
};
