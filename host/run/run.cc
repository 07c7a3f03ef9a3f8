#include "run/run.h"

#include <csignal>
#include <optional>
#include <utility>

#include "base/exit_code.h"
#include "process/signals.h"
#include "run/check.h"
#include "run/deliver.h"
#include "run/examine.h"
#include "run/execute.h"
#include "run/judge.h"
#include "run/stage.h"
#include "run/stopped.h"

namespace host {

namespace {

// What the report says while the run goes on.
std::string Unfinished(RunReport report) {
  report.judgement =
      Judge({{Cause::kUnfinished, "the run has not ended, or audio_bench was killed"}});
  return JsonReport(report);
}

}  // namespace

RunReport RunPlan(Plan plan, Limits& limits, ResultFile* json) {
  // From here on it may take long, and what is killed then must not leave an earlier report.
  StopWhereFailing(plan.stop, [&] {
    if (json != nullptr) json->ReplaceEarlier(Unfinished(ReportOf(plan)));
  });
  Staged staged = Stage(plan, limits);
  Checked checked = Check(plan, std::move(staged), limits);
  StopWhereFailing(checked.stop, [&] {
    if (json != nullptr && checked.ready) json->Replace(Unfinished(ReportOf(plan, checked)));
  });
  Executed executed = Execute(plan, std::move(checked), limits);
  return Judged(Examine(plan, std::move(executed), limits));
}

int Run(const Case& what) {
  Plan plan = MakePlan(what);
  std::optional<ResultFile> json;
  if (!what.json.empty()) json.emplace(what.json, Now() + what.timeout.value_or(kMaxSeconds));
  int exitCode = exit_code::kPass;
  int interruption = 0;
  {
    const HostSignals signals;
    Limits limits(signals, plan.timeout);
    ResultFile* const place = json ? &*json : nullptr;
    exitCode = Deliver(RunPlan(std::move(plan), limits, place), limits, place);
    interruption = limits.interruption();
  }
  json.reset();
  if (interruption != 0) raise(interruption);  // The caller sees that this process was interrupted.
  return exitCode;
}

}  // namespace host
