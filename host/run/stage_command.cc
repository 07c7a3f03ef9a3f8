#include "run/stage_command.h"

#include <csignal>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/shell_word.h"
#include "base/usage_error.h"
#include "process/signals.h"
#include "report/output.h"
#include "report/verdict.h"
#include "run/plan.h"
#include "run/stage.h"

namespace host {

namespace {

std::string RunCommand(const Plan& plan) {
  std::string command = "audio_bench run " + plan.what.routine;
  for (const std::string& word : plan.what.arguments) command += " " + ShellWord(word);
  return command + " --work " + ShellWord(plan.what.work);
}

std::string Text(const Plan& plan, const Staged& staged) {
  std::string text;
  for (const StagedFile& file : staged.files) text += Printable(file.Line()) + "\n";
  return text + "to run it: " + Printable(RunCommand(plan)) + "\n";
}

}  // namespace

int StageOnly(const Case& what) {
  const Plan plan = MakePlan(what);
  if (plan.sources.files.empty() && plan.sources.folders.empty() && !plan.stop) {
    throw UsageError{"stage needs a recording: --in FILE"};
  }
  int exitCode = exit_code::kPass;
  int interruption = 0;
  {
    const HostSignals signals;
    Limits limits(signals, plan.timeout);
    const Staged staged = Stage(plan, limits);
    interruption = limits.interruption();
    if (staged.stop && staged.stop->refusal) throw UsageError(*staged.stop->refusal);
    if (staged.stop) {
      const Judgement judged = Judge({staged.stop->problem});
      exitCode = judged.exitCode;
      fprintf(stderr, "audio_bench: %s\n", Printable(judged.reason).c_str());
    } else {
      exitCode = PrintResults(Text(plan, staged));
    }
  }
  if (interruption != 0) raise(interruption);  // The caller sees that this process was interrupted.
  return exitCode;
}

}  // namespace host
