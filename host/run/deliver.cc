#include "run/deliver.h"

#include <unistd.h>

#include <utility>
#include <vector>

#include "base/exit_code.h"
#include "base/units.h"
#include "base/usage_error.h"
#include "process/outlet.h"
#include "process/signals.h"
#include "run/judge.h"
#include "run/stopped.h"

namespace host {

namespace {

// The report of a run that could not be done as asked, in place of an earlier one.
void WriteRefusal(const RunReport& report, Limits& limits, ResultFile& json) {
  switch (report.stop->refusal->report) {
    case UsageError::Report::kWritten:
      json.WriteRefusal(JsonReport(report), limits);
      break;
    case UsageError::Report::kReplaced:
      json.ReplaceEarlier([&] { return JsonReport(report); });
      break;
    case UsageError::Report::kLeft:
      break;
  }
}

}  // namespace

int Deliver(RunReport report, Limits& limits, ResultFile* json, const Paint& paint) {
  if (report.stop && report.stop->refusal) {
    if (json != nullptr) WriteRefusal(report, limits, *json);
    throw UsageError(*report.stop->refusal);
  }
  std::vector<Problem> problems = report.judgement.problems;
  if (!WriteWithin(limits, STDOUT_FILENO, TextReport(report, paint))) {
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

void ReportRefusal(const std::string& path, const std::string& message) {
  RunReport report;
  report.started = TimeOfDay();
  report.stop = Refuse({message});
  report = Judged(std::move(report));
  ResultFile json(path, Now() + kPatience);
  const HostSignals signals;
  Limits limits(signals, kPatience);
  WriteRefusal(report, limits, json);
}

}  // namespace host
