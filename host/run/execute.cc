#include "run/execute.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "base/usage_error.h"
#include "engine/engine_work.h"
#include "files/file_before.h"
#include "process/child.h"
#include "process/progress.h"
#include "run/examine.h"
#include "run/judge.h"
#include "run/stopped.h"

namespace host {

namespace {

// What the engine may take after a routine has returned that leaves nothing running.
constexpr double kBackgroundSeconds = 2;

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

// Runs the routine; stops one that never returns when its time is up, and gives as much time anew
// for what follows.
ChildOutcome RunRoutineOfRow(const CatalogueRow& row, const RunOptions& options,
                             const ArgumentList& words, double timeout, FILE* log, Limits& limits,
                             Progress& progress) {
  const double seconds = row.runsOn > 0 ? options.linger.value_or(row.runsOn) : kBackgroundSeconds;
  const std::chrono::milliseconds background(std::llround(seconds * 1000));
  const ChildWork work = {
      .routine = [&] { harness::Run(row, words); },
      .afterwards = [&] { return FinishEngineWork(background, row.runsOn > 0); }};
  ChildOutcome outcome = RunInChild(work, options.work, limits, log, progress);
  // One that stood still, or whose end was not seen, did not go on for all of its time.
  const bool wentOn = outcome.stopSignal == 0 && outcome.cpu;
  if (row.neverReturns && wentOn && outcome.end == ChildOutcome::End::kTimedOut) {
    outcome.end = ChildOutcome::End::kStopped;
    limits.Restart(timeout);
  }
  return outcome;
}

}  // namespace

void RunAndExamine(const CatalogueRow& row, const RunOptions& options, const ArgumentList& words,
                   const Files& files, Limits& limits, RunReport& report) {
  const Log log(files.log);
  std::vector<FileBefore> inputsBefore;
  for (const FilePlace& input : files.inputs) {
    EndAtLimits(limits, report.timeout, "reading its inputs");
    inputsBefore.emplace_back(input.path);
  }
  std::vector<OutputBefore> outputsBefore;
  for (const FilePlace& output : files.outputs) {
    EndAtLimits(limits, report.timeout, "reading its earlier outputs");
    outputsBefore.emplace_back(output);
  }

  Progress progress(report.routine, files.inputs.size() + files.outputs.size());
  report.outcome =
      RunRoutineOfRow(row, options, words, report.timeout, log.file(), limits, progress);

  Examiner examiner(limits, report.timeout,
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

}  // namespace host
