#include "run/run.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "base/exit_code.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "process/child.h"
#include "process/progress.h"
#include "report/output.h"
#include "report/report.h"
#include "report/result_file.h"
#include "run/judge.h"

namespace host {

namespace {

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

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

File OpenLog(const std::string& path) {
  File log(fopen(path.c_str(), "wb"));
  if (log == nullptr) throw UsageError{"cannot write " + path + ": " + strerror(errno)};
  return log;
}

FileReport Examine(const FilePlace& place) {
  FileReport report;
  report.place = place;
  struct stat status;
  if (stat(place.path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return report;
  const File file(fopen(place.path.c_str(), "rb"));
  if (file == nullptr) return report;
  report.bytes = static_cast<uint64_t>(status.st_size);
  report.audio = FindAudio(place.use, file.get(), *report.bytes);
  if (report.audio) report.channels = MeasureAudio(file.get(), *report.audio);
  return report;
}

void AddCopy(FileReport& report) {
  const bool headerless = report.place.use.container == Container::kHeaderless;
  if (!headerless || !report.channels) return;
  const File file(fopen(report.place.path.c_str(), "rb"));
  if (file == nullptr) return;
  report.copy =
      WriteWaveCopy(file.get(), *report.audio, Peak(*report.channels), report.place.path + ".wav");
}

// Looks at what a run has left in the place of an output.
FileReport ExamineOutput(const FilePlace& place, const OutputBefore& before, bool wav) {
  const OutputState state = before.StateNow();
  FileReport report;
  if (state == OutputState::kWritten) {
    report = Examine(place);
    if (wav) AddCopy(report);
  }
  report.place = place;
  report.state = state;
  return report;
}

// The time as ISO 8601 has it, UTC.
std::string Now() {
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

void RunRow(const CatalogueRow& row, const RunOptions& options, const Words& words,
            ResultFile* json, RunReport& report) {
  CreateFolder(options.work);
  const auto inputs = PlaceFiles(row.inputs, row.declared.words.parameters, words, options.work);
  const auto outputs =
      PlaceFiles(harness::Outputs(row, words), row.declared.words.parameters, words, options.work);
  report.judgement = Judge(InputProblems(inputs));
  if (report.judgement.verdict != Verdict::kPass) return;

  CreateFolder(options.work + "/logs");
  report.log = options.work + "/logs/" + report.routine + ".log";
  const File log = OpenLog(report.log);
  std::vector<OutputBefore> before;
  for (const FilePlace& output : outputs) before.emplace_back(output);
  if (json != nullptr) json->Replace(JsonReport(Unfinished(report)));
  Progress progress(report.routine, inputs.size() + outputs.size());
  report.outcome = RunInChild([&] { harness::Run(row, words); }, options.work, options.timeout,
                              log.get(), progress);

  for (const FilePlace& input : inputs) report.inputs.push_back(Examine(input));
  for (size_t i = 0; i < outputs.size(); ++i) {
    report.outputs.push_back(ExamineOutput(outputs[i], before[i], options.wav));
  }
  report.judgement = Judge(OutcomeProblems(*report.outcome, options.timeout));
  if (report.judgement.verdict != Verdict::kPass) return;
  report.judgement = Judge(OutputProblems(report.outputs));
}

void RunRoutine(const RunOptions& options, ResultFile* json, RunReport& report) {
  const CatalogueRow& row = FindRow(options.routine);
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

// Prints the report and writes it as JSON. Returns the exit code, which is the one in the report
// where that could be written.
int Deliver(ResultFile* json, RunReport& report) {
  if (PrintResults(TextReport(report)) != exit_code::kPass) {
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
  RunReport report = {.started = Now(),
                      .workspace = options.work,
                      .timeout = options.timeout,
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
  } catch (const std::system_error& error) {
    Refuse(target, error.what(), report);
    throw;
  }
  const int exitCode = Deliver(target, report);
  json.reset();
  if (report.outcome && report.outcome->interruption != 0) raise(report.outcome->interruption);
  return exitCode;
}

void ReportRefusal(const std::string& path, const std::string& message) {
  RunReport report = {.started = Now()};
  ResultFile json(path);
  Refuse(&json, message, report);
}

}  // namespace host
