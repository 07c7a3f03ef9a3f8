#include "report/verdict.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/exit_code.h"

namespace host {

const char* VerdictName(Verdict verdict) {
  switch (verdict) {
    case Verdict::kPass:
      return "pass";
    case Verdict::kWarn:
      return "warn";
    case Verdict::kFail:
      return "fail";
    case Verdict::kError:
      return "error";
    case Verdict::kSkip:
      return "skip";
  }
  return "";
}

namespace {

struct CauseFacts {
  Cause cause;
  const char* name;
  Verdict verdict;
  int exitCode;
};

// From bad to worse.
constexpr CauseFacts kCauses[] = {
    {Cause::kGuardWarning, "guard_warning", Verdict::kWarn, exit_code::kPass},
    {Cause::kReferenceUnreadable, "reference_unreadable", Verdict::kWarn, exit_code::kPass},
    {Cause::kInputAsItIs, "input_as_it_is", Verdict::kWarn, exit_code::kPass},
    {Cause::kInputNotWhole, "input_not_whole", Verdict::kWarn, exit_code::kPass},
    {Cause::kNotDelivered, "not_delivered", Verdict::kError, exit_code::kUsage},
    {Cause::kNotRunnable, "not_runnable", Verdict::kSkip, exit_code::kSkip},
    {Cause::kLogIncomplete, "log_incomplete", Verdict::kError, exit_code::kUsage},
    {Cause::kGuard, "guard", Verdict::kFail, exit_code::kFail},
    {Cause::kCopyFailed, "copy_failed", Verdict::kFail, exit_code::kFail},
    {Cause::kSamplesNotFinite, "samples_not_finite", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputNotMeasured, "output_not_measured", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputChanged, "output_changed", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputUnreadable, "output_unreadable", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputNotWhole, "output_not_whole", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputFormat, "output_format", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputEmpty, "output_empty", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputStale, "output_stale", Verdict::kFail, exit_code::kFail},
    {Cause::kOutputAbsent, "output_absent", Verdict::kFail, exit_code::kFail},
    {Cause::kWriteError, "write_error", Verdict::kFail, exit_code::kFail},
    {Cause::kInputFormat, "input_format", Verdict::kFail, exit_code::kFail},
    {Cause::kInputTooShort, "input_too_short", Verdict::kFail, exit_code::kFail},
    {Cause::kArgument, "argument", Verdict::kFail, exit_code::kFail},
    {Cause::kInputChanged, "input_changed", Verdict::kError, exit_code::kInput},
    {Cause::kReadError, "read_error", Verdict::kError, exit_code::kInput},
    {Cause::kUnreadableInput, "unreadable_input", Verdict::kError, exit_code::kInput},
    {Cause::kMissingInput, "missing_input", Verdict::kError, exit_code::kInput},
    {Cause::kTimeout, "timeout", Verdict::kError, exit_code::kCrash},
    {Cause::kCrash, "crash", Verdict::kError, exit_code::kCrash},
    {Cause::kInterrupted, "interrupted", Verdict::kError, exit_code::kSignal},
    {Cause::kUsage, "usage", Verdict::kError, exit_code::kUsage},
    {Cause::kUnfinished, "unfinished", Verdict::kError, exit_code::kUsage},
};

const CauseFacts& Facts(Cause cause) {
  return *std::find_if(std::begin(kCauses), std::end(kCauses),
                       [&](const CauseFacts& facts) { return facts.cause == cause; });
}

}  // namespace

const char* CauseName(Cause cause) { return Facts(cause).name; }

bool IsWarning(Cause cause) { return Facts(cause).verdict == Verdict::kWarn; }

bool IsWorse(Cause cause, Cause than) { return &Facts(cause) > &Facts(than); }

const Problem* Worst(std::span<const Problem> problems) {
  const auto worst = std::max_element(
      problems.begin(), problems.end(),
      [](const Problem& a, const Problem& b) { return IsWorse(b.cause, a.cause); });
  return worst == problems.end() ? nullptr : &*worst;
}

const Problem* Judgement::Worst() const { return host::Worst(problems); }

Judgement Judge(std::vector<Problem> problems) {
  Judgement judgement;
  judgement.problems = std::move(problems);
  const Problem* const worst = judgement.Worst();
  if (worst == nullptr) return judgement;
  const CauseFacts& facts = Facts(worst->cause);
  judgement.verdict = facts.verdict;
  judgement.exitCode = facts.exitCode;
  if (worst->cause == Cause::kInterrupted) judgement.exitCode += worst->signal;
  judgement.reason = worst->text;
  if (const size_t more = judgement.problems.size() - 1; more > 0) {
    judgement.reason +=
        ", and " + std::to_string(more) + (more > 1 ? " more problems" : " more problem");
  }
  return judgement;
}

}  // namespace host
