#include "run/run.h"

#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "base/exit_code.h"
#include "files/temporary_workspace.h"
#include "process/signals.h"
#include "run/check.h"
#include "run/deliver.h"
#include "run/examine.h"
#include "run/execute.h"
#include "run/hand_over.h"
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

// Whether there is something in a temporary workspace that may be looked at.
bool IsToBeKept(const RunReport& report, const Case& what) {
  if (report.stop && report.stop->refusal) return false;
  std::error_code error;
  if (std::filesystem::is_empty(report.workspace, error)) return false;
  return report.judgement.verdict != Verdict::kPass || !what.json.empty() || !AllHandedOver(report);
}

}  // namespace

RunReport RunPlan(Plan plan, Limits& limits, ResultFile* json) {
  // From here on it may take long, and what is killed then must not leave an earlier report.
  StopWhereFailing(plan.stop, [&] {
    if (json != nullptr) json->ReplaceEarlier([&] { return Unfinished(ReportOf(plan)); });
  });
  Staged staged = Stage(plan, limits);
  Checked checked = Check(plan, std::move(staged), limits);
  StopWhereFailing(checked.stop, [&] {
    if (json != nullptr && checked.ready) json->Replace(Unfinished(ReportOf(plan, checked)));
  });
  Executed executed = Execute(plan, std::move(checked), limits);
  return HandOver(plan, Judged(Examine(plan, std::move(executed), limits)), limits);
}

int Run(const Case& what) {
  std::optional<TemporaryWorkspace> temporary;
  Case own = what;
  if (what.temporary) own.work = temporary.emplace().path();
  Plan plan = MakePlan(own);
  std::optional<ResultFile> json;
  if (!what.json.empty()) json.emplace(what.json, Now() + what.timeout.value_or(kMaxSeconds));
  int exitCode = exit_code::kPass;
  int interruption = 0;
  {
    const HostSignals signals;
    Limits limits(signals, plan.timeout);
    ResultFile* const place = json ? &*json : nullptr;
    RunReport report = RunPlan(std::move(plan), limits, place);
    if (temporary && IsToBeKept(report, what)) {
      temporary->Keep();
      report.kept = temporary->path();
    } else if (temporary) {
      report.log.clear();  // It is gone with the workspace.
    }
    exitCode = Deliver(std::move(report), limits, place, Paint(what.color, STDOUT_FILENO));
    interruption = limits.interruption();
  }
  json.reset();
  temporary.reset();
  if (interruption != 0) raise(interruption);  // The caller sees that this process was interrupted.
  return exitCode;
}

}  // namespace host
