#include "run/execute.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <thread>
#include <utility>

#include "base/exit_code.h"
#include "base/usage_error.h"
#include "engine/engine_work.h"
#include "process/progress.h"
#include "process/run_here.h"
#include "run/digest_files.h"
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

// Lets the routine's calls go to the engine of the run. Where that fails the process ends, and says
// why.
void Enter(const Engine& engine) {
  try {
    EnterEngine(engine);
  } catch (const UsageError& error) {
    fprintf(stderr, "audio_bench: %s\n", error.message.c_str());
    _exit(exit_code::kUsage);
  }
}

// Waits for what a routine has started. An engine in a library cannot be asked when it is done, nor
// how its devices did.
EngineFindings Finish(const Engine& engine, std::chrono::milliseconds limit, bool runsOn) {
  const auto end = std::chrono::steady_clock::now() + limit;
  EngineFindings findings = FinishEngineWork(limit, runsOn);
  if (!engine.HasDevices()) return findings;
  if (runsOn) std::this_thread::sleep_until(end);
  findings.gaps.reset();
  return findings;
}

// Runs the routine; stops one that never returns when its time is up, and gives as much time anew
// for what follows.
ChildOutcome RunRoutine(const Plan& plan, FILE* log, LineResults& heard, Limits& limits,
                        Progress& progress) {
  const CatalogueRow& row = *plan.row;
  const ArgumentList words = plan.Words();
  const double seconds =
      row.runsOn > 0 ? plan.what.linger.value_or(row.runsOn) : kBackgroundSeconds;
  const std::chrono::milliseconds background(std::llround(seconds * 1000));
  const ChildWork work = {
      .routine =
          [&] {
            Enter(plan.engine);
            harness::Run(row, words);
          },
      .afterwards = [&] { return Finish(plan.engine, background, row.runsOn > 0); }};
  const Hearing hearing = {
      .output = [&](std::string_view bytes) { heard.Hear(Stands::kPrinted, bytes); },
      .log = [&](std::string_view bytes) { heard.Hear(Stands::kLogged, bytes); }};
  if (plan.what.debug) {
    heard.MissHeard("nobody listens with --debug");
    fputs("With --debug what the routine logs goes to standard error alone.\n", log);
    return RunHere(work, plan.what.work, limits.signals());
  }
  ChildOutcome outcome = RunInChild(work, plan.what.work, limits, log, hearing, progress);
  // One that stood still, or whose end was not seen, did not go on for all of its time.
  const bool wentOn = outcome.stopSignal == 0 && outcome.cpu;
  if (row.neverReturns && wentOn && outcome.end == ChildOutcome::End::kTimedOut) {
    outcome.end = ChildOutcome::End::kStopped;
    limits.Restart(plan.timeout);
  }
  return outcome;
}

void LookAndRun(const Plan& plan, Limits& limits, Executed& executed) {
  const Log log(plan.Log());
  for (const FileReport& input : executed.checked.inputs) {
    EndAtLimits(limits, plan.timeout, "reading its inputs");
    executed.inputsBefore.emplace_back(input.place.path);
  }
  if (plan.WantsDigests()) DigestInputs(plan, limits, executed.checked.inputs);
  for (const FilePlace& output : plan.outputs) {
    EndAtLimits(limits, plan.timeout, "reading its earlier outputs");
    executed.outputsBefore.emplace_back(output);
  }
  Progress progress(plan.what.routine, executed.checked.inputs.size() + plan.outputs.size());
  executed.heard = LineResults(plan.row->results);
  executed.outcome = RunRoutine(plan, log.file(), executed.heard, limits, progress);
}

}  // namespace

Executed Execute(const Plan& plan, Checked checked, Limits& limits) {
  Executed executed = {.checked = std::move(checked)};
  executed.stop = executed.checked.stop;
  if (executed.checked.ready) {
    StopWhereFailing(executed.stop, [&] { LookAndRun(plan, limits, executed); });
  }
  return executed;
}

}  // namespace host
