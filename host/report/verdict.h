#pragma once

#include <string>
#include <utility>

#include "base/exit_code.h"

namespace host {

// What comes of a run.
enum class Verdict { kPass, kFail, kError, kSkip };

const char* VerdictName(Verdict verdict);  // "pass", "fail", "error", "skip"

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

}  // namespace host
