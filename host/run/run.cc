#include "run/run.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstring>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

#include "base/exit_code.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "engine/engine_work.h"
#include "files/beneath.h"
#include "files/workspace_lock.h"
#include "process/child.h"
#include "process/outlet.h"
#include "process/progress.h"
#include "report/report.h"
#include "report/result_file.h"
#include "run/examine.h"
#include "run/input_problem.h"
#include "run/judge.h"
#include "run/shared_files.h"

namespace host {

namespace {

constexpr double kPatience = 2;  // Seconds that a reader has at least to take the report.

// Seconds that a run may take when the command line does not say.
constexpr double kMostSeconds = 600;
constexpr double kMostSecondsOfNeverReturning = 10;

// What the engine may take after a routine has returned that leaves nothing running.
constexpr double kBackgroundSeconds = 2;

using Words = std::vector<std::string_view>;

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

// The log of a run.
class Log {
 public:
  explicit Log(const WorkFile& file) : m_file(file.Create()) {
    if (m_file != nullptr) return;
    throw UsageError{"cannot write " + file.Path() + ": " + WriteFault(errno)};
  }
  ~Log() { fclose(m_file); }
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  FILE* file() const { return m_file; }

 private:
  FILE* m_file;
};

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

// The files without those that an argument "none" stands for.
std::vector<FileUse> Opened(const CatalogueRow& row, std::vector<FileUse> uses,
                            const Words& words) {
  const std::vector<harness::Parameter> parameters = harness::Parameters(row.declared.words);
  for (size_t i = 0; i < words.size() && !row.nullable.empty(); ++i) {
    if (parameters[i].name != row.nullable || words[i] != "none") continue;
    const std::string name = "{" + std::string(row.nullable) + "}";
    std::erase_if(uses, [&](const FileUse& use) { return use.name == name; });
  }
  return uses;
}

// The inputs of a run, with those that the first one lists.
std::vector<FilePlace> PlaceInputs(const CatalogueRow& row, const Words& words,
                                   const std::string& work) {
  const std::string_view parameters = row.declared.words.parameters;
  std::vector<FileUse> uses = Opened(row, harness::Inputs(row, words), words);
  if (row.listed != nullptr) {
    const std::string list = PlaceFiles(uses, parameters, words, work).front().path;
    std::ifstream file(list, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::vector<FileUse> listed = row.listed(text);
    uses.insert(uses.end(), listed.begin(), listed.end());
  }
  return PlaceFiles(uses, parameters, words, work);
}

// The files of a run.
struct Files {
  std::vector<FilePlace> inputs;
  std::vector<FilePlace> outputs;
  WorkFile log;
};

// Runs the routine; stops one that never returns when its time is up, and gives the limits anew
// for what follows.
ChildOutcome RunRoutineOfRow(const CatalogueRow& row, const RunOptions& options, const Words& words,
                             double timeout, FILE* log, std::optional<Limits>& limits,
                             Progress& progress) {
  const double seconds = row.runsOn > 0 ? options.linger.value_or(row.runsOn) : kBackgroundSeconds;
  const std::chrono::milliseconds background(std::llround(seconds * 1000));
  const ChildWork work = {
      .routine = [&] { harness::Run(row, words); },
      .afterwards = [&] { return FinishEngineWork(background, row.runsOn > 0); }};
  ChildOutcome outcome = RunInChild(work, options.work, *limits, log, progress);
  // One that stood still, or whose end was not seen, did not go on for all of its time.
  const bool wentOn = outcome.stopSignal == 0 && outcome.cpu;
  if (row.neverReturns && wentOn && outcome.end == ChildOutcome::End::kTimedOut) {
    outcome.end = ChildOutcome::End::kStopped;
    limits.emplace(limits->signals(), timeout);
  }
  return outcome;
}

// Runs the routine and says what it has left.
void RunAndExamine(const CatalogueRow& row, const RunOptions& options, const Words& words,
                   const Files& files, RunReport& report) {
  const Log log(files.log);
  std::vector<FileBefore> inputsBefore;
  for (const FilePlace& input : files.inputs) inputsBefore.emplace_back(input.path);
  std::vector<OutputBefore> outputsBefore;
  for (const FilePlace& output : files.outputs) outputsBefore.emplace_back(output);

  const HostSignals signals;
  std::optional<Limits> limits(std::in_place, signals, report.timeout);
  Progress progress(report.routine, files.inputs.size() + files.outputs.size());
  report.outcome =
      RunRoutineOfRow(row, options, words, report.timeout, log.file(), limits, progress);

  Examiner examiner(*limits, report.timeout,
                    {.copies = options.wav ? options.work : "", .listFigures = options.figures});
  for (size_t i = 0; i < files.inputs.size(); ++i) {
    examiner.LookAtInput(report.inputs[i], inputsBefore[i]);
  }
  for (size_t i = 0; i < files.outputs.size(); ++i) {
    report.outputs.push_back(examiner.Output(files.outputs[i], outputsBefore[i]));
  }
  report.lookEnded = examiner.lookEnded();
  report.judgement = Judge(RunProblems(report, report.timeout));
}

void RunRow(const CatalogueRow& row, const RunOptions& options, const Words& words,
            ResultFile* json, RunReport& report) {
  const std::string_view parameters = row.declared.words.parameters;
  const Files files = {PlaceInputs(row, words, options.work),
                       PlaceFiles(harness::Outputs(row, words), parameters, words, options.work),
                       {options.work, "logs/" + report.routine + ".log"}};
  RefuseSharedFiles(files.inputs, files.outputs, files.log, options);
  std::optional<WorkspaceLock> lock;
  if (std::filesystem::is_directory(options.work)) lock.emplace(options.work, options.wait);
  for (const FilePlace& place : files.inputs) {
    report.inputs.push_back({.place = place});
    if (auto problem = InputProblem(place)) report.inputs.back().problems.push_back(*problem);
  }
  if (!MayRun(report.inputs)) {
    report.judgement = Judge(FileProblems(report));
    return;
  }

  CreateFolder(options.work);
  if (!lock) lock.emplace(options.work, options.wait);
  RefuseOutputs(files.outputs, options.work);
  if (options.wav) RemoveCopies(files.outputs, options.work);
  report.log = files.log.Path();
  if (json != nullptr) json->Replace(JsonReport(Unfinished(report)));
  RunAndExamine(row, options, words, files, report);
}

void RunRoutine(const RunOptions& options, ResultFile* json, RunReport& report) {
  const CatalogueRow& row = FindRow(options.routine);
  report.timeout =
      options.timeout.value_or(row.neverReturns ? kMostSecondsOfNeverReturning : kMostSeconds);
  const Words words(options.arguments.begin(), options.arguments.end());
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
  RunRow(row, options, words, json, report);
}

// The report of a run that could not be done as asked, in place of an earlier one.
void Refuse(ResultFile* json, const std::string& message, RunReport& report) {
  if (json == nullptr) return;
  report.judgement = Judge({{Cause::kUsage, message}});
  json->WriteRefusal(JsonReport(report));
}

// The signal that interrupted a run; 0 for none.
int Interruption(const Judgement& judgement) {
  const Problem* const worst = judgement.Worst();
  return worst != nullptr && worst->cause == Cause::kInterrupted ? worst->signal : 0;
}

// Prints the report, waiting for its reader until Now() is `until`, and writes it as JSON. Returns
// the exit code, which is the one in the report where that could be written.
int Deliver(ResultFile* json, double until, RunReport& report) {
  if (!WriteUntil(STDOUT_FILENO, TextReport(report), until)) {
    report.judgement.problems.push_back(
        {Cause::kNotDelivered, "the results could not be written to standard output"});
    report.judgement = Judge(std::move(report.judgement.problems));
  }
  const int exitCode = report.judgement.exitCode;
  const int written = json == nullptr ? exit_code::kPass : json->Write(JsonReport(report));
  return exitCode != exit_code::kPass ? exitCode : written;
}

}  // namespace

int Run(const RunOptions& options) {
  const double start = Now();
  RunReport report = {.started = TimeOfDay(),
                      .workspace = options.work,
                      .timeout = options.timeout.value_or(kMostSeconds),
                      .routine = options.routine,
                      .arguments = options.arguments};
  std::optional<ResultFile> json;
  if (!options.json.empty()) json.emplace(options.json);
  ResultFile* const target = json ? &*json : nullptr;
  try {
    RunRoutine(options, target, report);
  } catch (const UsageError& error) {
    if (!error.touchNothing) Refuse(target, error.message, report);
    throw;
  } catch (const std::exception& error) {
    Refuse(target, error.what(), report);
    throw;
  }
  // Who has interrupted the run wants to see its end.
  const bool wait = !Interruption(report.judgement);
  const int exitCode =
      Deliver(target, std::max(wait ? start + report.timeout : 0, Now() + kPatience), report);
  json.reset();
  if (const int signal = Interruption(report.judgement)) raise(signal);
  return exitCode;
}

void ReportRefusal(const std::string& path, const std::string& message) {
  RunReport report = {.started = TimeOfDay()};
  ResultFile json(path);
  Refuse(&json, message, report);
}

}  // namespace host
