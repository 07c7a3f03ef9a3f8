#include "run/run.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <system_error>
#include <utility>

#include "base/exit_code.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "files/workspace_lock.h"
#include "process/outlet.h"
#include "report/report.h"
#include "report/result_file.h"
#include "run/execute.h"
#include "run/input_problem.h"
#include "run/inputs.h"
#include "run/judge.h"
#include "run/shared_files.h"
#include "run/stopped.h"
#include "run/wave_input.h"

namespace host {

namespace {

// Seconds that a run may take when the command line does not say.
constexpr double kMostSeconds = 600;
constexpr double kMostSecondsOfNeverReturning = 10;

// Why a routine is not one to run; empty when it is.
std::string SkipReason(const CatalogueRow& row) {
  if (row.helper) return "a helper: routines call it, it does not run by itself";
  if (!row.declared.built) return "not built yet";
  if (!row.calledBy.empty()) return Availability(row) + ", it does not run by itself";
  return "";
}

void CreateFolder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) return;
  throw UsageError{"cannot create the folder " + path + ": " +
                   (error ? error.message() : strerror(ENOTDIR))};
}

// The time now as ISO 8601 has it, UTC.
std::string TimeOfDay() {
  const time_t now = time(nullptr);
  tm parts;
  char text[32];
  return std::string(text, strftime(text, sizeof text, "%FT%TZ", gmtime_r(&now, &parts)));
}

// What the report says while the routine runs, and for ever if this process is killed meanwhile.
RunReport Unfinished(RunReport report) {
  report.judgement =
      Judge({{Cause::kUnfinished, "the run has not ended, or audio_bench was killed"}});
  return report;
}

// Looks at the inputs, and at those that the first one lists.
void CheckInputs(const CatalogueRow& row, const RunOptions& options, const ArgumentList& words,
                 Files& files, Limits& limits, RunReport& report) {
  const auto goOn = [&] { EndAtLimits(limits, report.timeout, "looking at its inputs"); };
  const auto look = [&](const FilePlace& place) {
    goOn();
    report.inputs.push_back({.place = place});
    if (auto problem = InputProblem(place)) report.inputs.back().problems.push_back(*problem);
  };
  std::for_each(files.inputs.begin(), files.inputs.end(), look);
  if (row.listed == nullptr || !MayRun(report.inputs)) return;

  const ListedInputs listed =
      ReadListedInputs(row, words, options.work, files.inputs.front(), goOn);
  if (listed.problem) report.inputs.front().problems.push_back(*listed.problem);
  files.inputs.insert(files.inputs.end(), listed.places.begin(), listed.places.end());
  RefuseSharedFiles(files.inputs, files.outputs, files.log, options, goOn);
  std::for_each(listed.places.begin(), listed.places.end(), look);
}

// Locks the workspace. The time of the run starts when that is done.
void Lock(const RunOptions& options, Limits& limits, const RunReport& report,
          std::optional<WorkspaceLock>& lock) {
  const auto wait = [&] {
    pollfd watched = {.fd = limits.signals().descriptor(), .events = POLLIN, .revents = 0};
    poll(&watched, 1, 50);
    if (!limits.Interrupted()) return;
    throw Ended{Stopped(limits, report.timeout, "waiting for the workspace")};
  };
  lock.emplace(options.work, options.wait ? wait : std::function<void()>());
  limits.Restart(report.timeout);
}

void RunRow(const CatalogueRow& row, const RunOptions& options, const ArgumentList& words,
            Files& files, Limits& limits, ResultFile* json, RunReport& report) {
  std::optional<WorkspaceLock> lock;
  std::error_code error;
  if (std::filesystem::is_directory(options.work, error)) Lock(options, limits, report, lock);
  CheckInputs(row, options, words, files, limits, report);
  AddFormatWarnings(report.inputs);
  if (!MayRun(report.inputs)) {
    report.judgement = Judge(FileProblems(report));
    return;
  }

  CreateFolder(options.work);
  if (!lock) Lock(options, limits, report, lock);
  RefuseOutputs(files.outputs, options.work);
  if (options.wav) RemoveCopies(files.outputs, options.work);
  report.log = files.log.Path();
  if (json != nullptr) json->Replace(JsonReport(Unfinished(report)));
  RunAndExamine(row, options, words, files, limits, report);
}

void RunRoutine(const RunOptions& options, Limits& limits, ResultFile* json, RunReport& report) {
  const CatalogueRow& row = FindRow(options.routine);
  report.timeout =
      options.timeout.value_or(row.neverReturns ? kMostSecondsOfNeverReturning : kMostSeconds);
  limits.Restart(report.timeout);
  const ArgumentList words(options.arguments.begin(), options.arguments.end());
  if (const std::string skip = SkipReason(row); !skip.empty()) {
    report.judgement = Judge({{Cause::kNotRunnable, skip}});
    return;
  }
  const std::string fault = harness::ArgumentFault(row, words);
  if (!fault.empty()) throw UsageError{options.routine + " " + fault + ": " + Declaration(row)};
  if (const std::string lacking = harness::Lacking(row, words); !lacking.empty()) {
    report.judgement = Judge({{Cause::kNotRunnable, lacking}});
    return;
  }

  Files files = {
      DeclaredInputs(row, words, options.work),
      PlaceFiles(harness::Outputs(row, words), row.declared.words.parameters, words, options.work),
      {options.work, "logs/" + report.routine + ".log"}};
  RefuseSharedFiles(files.inputs, files.outputs, files.log, options, [] {});
  // From here on it may take long, and what is killed then must not leave an earlier report.
  if (json != nullptr) json->ReplaceEarlier(JsonReport(Unfinished(report)));
  try {
    report.fruitless = harness::Fruitless(row, words);
    RunRow(row, options, words, files, limits, json, report);
  } catch (const Ended& ended) {
    report.judgement = Judge({ended.problem});
  }
}

// The report of a run that could not be done as asked, in place of an earlier one.
void Refuse(ResultFile* json, const UsageError& error, Limits& limits, RunReport& report) {
  if (json == nullptr || error.report == UsageError::Report::kLeft) return;
  report.judgement = Judge({{Cause::kUsage, error.message}});
  if (error.report == UsageError::Report::kReplaced) {
    json->ReplaceEarlier(JsonReport(report));
  } else {
    json->WriteRefusal(JsonReport(report), limits);
  }
}

// Prints the report and writes it as JSON; their readers have as long as the limits allow. Returns
// the exit code, which is the one in the report where that could be written.
int Deliver(ResultFile* json, Limits& limits, RunReport& report) {
  std::vector<Problem> problems = report.judgement.problems;
  if (!WriteWithin(limits, STDOUT_FILENO, TextReport(report))) {
    problems.push_back(
        {Cause::kNotDelivered, "the results could not be written to standard output"});
  }
  const Problem* const worst = report.judgement.Worst();
  const bool told = worst != nullptr && worst->cause == Cause::kInterrupted;
  if (limits.interruption() != 0 && !told) {
    problems.push_back(Stopped(limits, report.timeout, "its results were read"));
  }
  report.judgement = Judge(std::move(problems));
  const int exitCode = report.judgement.exitCode;
  const int written = json == nullptr ? exit_code::kPass : json->Write(JsonReport(report), limits);
  return exitCode != exit_code::kPass ? exitCode : written;
}

// Runs the routine and reports. Returns the exit code.
int RunAndReport(const RunOptions& options, Limits& limits, ResultFile* json, RunReport& report) {
  try {
    RunRoutine(options, limits, json, report);
  } catch (const UsageError& error) {
    Refuse(json, error, limits, report);
    throw;
  } catch (const std::exception& error) {
    Refuse(json, {error.what()}, limits, report);
    throw;
  }
  return Deliver(json, limits, report);
}

}  // namespace

int Run(const RunOptions& options) {
  RunReport report = {.started = TimeOfDay(),
                      .workspace = options.work,
                      .timeout = options.timeout.value_or(kMostSeconds),
                      .routine = options.routine,
                      .arguments = options.arguments};
  std::optional<ResultFile> json;
  if (!options.json.empty()) json.emplace(options.json, Now() + report.timeout);
  int exitCode = exit_code::kPass;
  int interruption = 0;
  {
    const HostSignals signals;
    Limits limits(signals, report.timeout);
    exitCode = RunAndReport(options, limits, json ? &*json : nullptr, report);
    interruption = limits.interruption();
  }
  json.reset();
  if (interruption != 0) raise(interruption);  // Who has interrupted the run wants to see its end.
  return exitCode;
}

void ReportRefusal(const std::string& path, const std::string& message) {
  RunReport report = {.started = TimeOfDay()};
  ResultFile json(path, Now() + kPatience);
  const HostSignals signals;
  Limits limits(signals, kPatience);
  Refuse(&json, {message}, limits, report);
}

}  // namespace host
