#include "suite/suite_counts.h"

#include <algorithm>

#include "base/exit_code.h"
#include "suite/case_record.h"

namespace host {

namespace {

// The exit code of a suite for the exit code of a case that has failed.
int WorstOf(const Json& exitCode) {
  const int code = exitCode.is_number() ? exitCode.get<int>() : exit_code::kFail;
  return code == exit_code::kCrash || code == exit_code::kInput ? code : exit_code::kFail;
}

}  // namespace

void SuiteCounts::Add(const Json& record) {
  const std::string verdict = record.value("verdict", "");
  if (IsKnownFailure(record)) {
    ++known;
  } else if (verdict == "pass") {
    ++pass;
  } else if (verdict == "warn") {
    ++warn;
  } else if (verdict == "skip") {
    ++skip;
  } else if (verdict == "not_run") {
    ++notRun;
  } else {
    ++(verdict == "fail" ? fail : error);
    worst = std::max(worst, WorstOf(record["exit_code"]));
  }
}

int SuiteCounts::ExitCode() const {
  if (worst != 0) return worst;
  if (notRun > 0) return exit_code::kFail;
  return skip > 0 && skip == Ended() ? exit_code::kSkip : exit_code::kPass;
}

std::string SuiteCounts::Text() const {
  const auto number = [](size_t count) { return std::to_string(count); };
  std::string text = number(pass + warn) + " passed, " + number(Failed()) + " failed, " +
                     number(skip) + " skipped";
  if (known > 0) text += ", " + number(known) + " known to fail";
  if (notRun > 0) text += ", " + number(notRun) + " not run";
  if (warn > 0) text += "; " + number(warn) + " of those that passed with a warning";
  return text;
}

Json SuiteCounts::AsJson() const {
  return {{"pass", pass}, {"warn", warn},   {"fail", fail},     {"error", error},
          {"skip", skip}, {"known", known}, {"not_run", notRun}};
}

}  // namespace host
