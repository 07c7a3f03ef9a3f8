#include "replay/replay.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/usage_error.h"
#include "files/temporary_workspace.h"
#include "process/signals.h"
#include "replay/compare_runs.h"
#include "replay/provide_inputs.h"
#include "replay/recorded_run.h"
#include "report/output.h"
#include "run/plan.h"
#include "run/run.h"

namespace host {

namespace {

// The recorded case, to be run in another workspace, with nothing left behind.
Case CaseOf(const RecordedRun& recorded, const CaseOfWords& caseOf, const std::string& workspace) {
  const std::vector<std::string>& words = recorded.command;
  Case what;
  try {
    what = caseOf(std::span(words).subspan(words.empty() ? 0 : 1));
  } catch (const UsageError& error) {
    throw ReplayFault{"the command line of the report is none: " + error.message};
  }
  what.work = workspace;
  what.temporary = true;
  what.debug = false;
  what.wait = false;
  what.out.clear();
  what.digests = true;
  return what;
}

// Throws ReplayFault where an input has not the bytes that it had.
void CheckInputs(const RecordedRun& recorded, const RunReport& report) {
  for (const RecordedFile& input : recorded.inputs) {
    for (const FileReport& own : report.inputs) {
      if (own.place.name != input.name || own.digest == input.digest) continue;
      throw ReplayFault{"input " + input.name + " cannot be made again from " + input.source +
                        " with the bytes that it had"};
    }
  }
}

// Whether what comes out is not a matter of the inputs alone.
bool DependsOnMore(const CatalogueRow& row) {
  return row.device != Device::kNone || row.seconds > 0 || row.runsOn > 0 || row.neverReturns;
}

std::string Notes(const RecordedRun& recorded, const RunReport& report, const Plan& plan,
                  bool differs) {
  std::string text;
  const auto note = [&text](const std::string& line) { text += "  note    " + line + "\n"; };
  if (DependsOnMore(*plan.row)) {
    note("what comes out depends on the clock or on audio devices: it need not be the same twice");
  }
  if (recorded.appended)
    note("an output was added to what was there before, which is not there now");
  if (!differs) return text;
  for (const std::string& line : OtherOrigins(recorded.report, Json::parse(JsonReport(report)))) {
    note(line);
  }
  return text;
}

// The lines for readers; what differs is told in `differs`.
std::string Text(const RecordedRun& recorded, const RunReport& report, const Plan& plan,
                 const std::vector<std::string>& differences) {
  const bool differs = !differences.empty();
  std::string text = differs ? "differs" : "same bytes";
  text += "  " + recorded.routine + "  as of " + recorded.started + "\n";
  for (const std::string& line : differences) text += "  " + line + "\n";
  return text + Notes(recorded, report, plan, differs);
}

// Prints what came out, and returns the exit code.
int Tell(const RecordedRun& recorded, const Plan& plan, Limits& limits, RunReport report) {
  if (report.stop) throw ReplayFault{"the run cannot be done again: " + report.stop->problem.text};
  if (!report.outcome) {
    throw ReplayFault{"the run cannot be done again: " + report.judgement.reason};
  }
  CheckInputs(recorded, report);
  const std::vector<std::string> differences =
      Differences(recorded, report, [&limits] { return !limits.Interrupted(); });
  if (limits.Interrupted()) return exit_code::kInput;
  std::string text;
  for (const char letter : Text(recorded, report, plan, differences)) {
    text += letter == '\n' ? "\n" : Printable(std::string(1, letter));
  }
  const int printed = PrintResults(text);
  if (printed != exit_code::kPass) return printed;
  return differences.empty() ? exit_code::kPass : exit_code::kFail;
}

// Returns the exit code, of no meaning when it was interrupted.
int ReplayWithin(const ReplayOptions& options, const CaseOfWords& caseOf, Limits& limits) {
  const RecordedRun recorded = ReadRecordedRun(options.report);
  const TemporaryWorkspace workspace;
  Case what = CaseOf(recorded, caseOf, workspace.path());
  ProvideInputs(
      recorded, [&limits] { return !limits.Interrupted(); }, what);
  const Plan plan = MakePlan(what);
  limits.Restart(plan.timeout);
  RunReport report = RunPlan(plan, limits, nullptr);
  return limits.Interrupted() ? exit_code::kInput : Tell(recorded, plan, limits, std::move(report));
}

}  // namespace

int Replay(const ReplayOptions& options, const CaseOfWords& caseOf) {
  int exitCode = exit_code::kInput;
  int interruption = 0;
  {
    const HostSignals signals;
    Limits limits(signals, kMaxSeconds);
    try {
      exitCode = ReplayWithin(options, caseOf, limits);
    } catch (const ReplayFault& fault) {
      // What is not read to its end is no fault when that was interrupted.
      if (!limits.Interrupted())
        fprintf(stderr, "audio_bench: %s\n", Printable(fault.text).c_str());
    }
    interruption = limits.interruption();
  }
  if (interruption != 0) raise(interruption);  // The caller sees that this process was interrupted.
  return exitCode;
}

}  // namespace host
