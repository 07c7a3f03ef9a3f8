#include "cli/run_words.h"

#include <CLI/CLI.hpp>

#include "cli/color_option.h"
#include "cli/engine_options.h"
#include "cli/seconds_word.h"

namespace host {

namespace {

std::string EmptyProblem(const std::string& word) { return word.empty() ? "is empty" : ""; }

void AddReplay(CLI::App& app, ReplayOptions& options) {
  CLI::App& replay =
      *app.add_subcommand("replay", "Run again what a report tells of, and compare the outputs");
  replay.footer(
      "REPORT.json is of run --json, or the folder of a case of a suite (DIR/cases/ID). Exit "
      "codes:\n"
      "0 same bytes, 1 something differs, 3 the run cannot be done again.");
  replay.add_option("REPORT", options.report)->required()->type_name("");
}

}  // namespace

void AddWork(CLI::App& command, std::string& work) {
  command.add_option("--work", work, "Workspace: all files of the routine are in this folder")
      ->type_name("DIR")
      ->check(EmptyProblem)
      ->capture_default_str();
}

RunWords::RunWords(CLI::App& app, Case& run, ReplayOptions& replay) : m_case(run) {
  AddRun(app);
  AddStage(app);
  AddReplay(app, replay);
}

void RunWords::AddRun(CLI::App& app) {
  CLI::App& run = *app.add_subcommand("run", "Run one routine in a process of its own");
  run.footer(
      "Without a routine: the selected test (RunTestCase). Arguments are one word each, in the\n"
      "declared order; after \"--\" every word is an argument. With --in and --out those that "
      "name\n"
      "files may be left out, all of them, and the workspace is a temporary one unless it is "
      "given.");
  AddWork(run, m_case.work);
  AddEngine(run, m_case.engine);
  AddEngineOnly(run, m_case.engineOnly);
  run.add_option("--timeout-s", m_case.timeout,
                 "End a run that takes longer, in seconds (600; a routine that never returns "
                 "is stopped after 10)")
      ->type_name("N")
      ->check(SecondsProblem);
  run.add_option("--linger-s", m_case.linger,
                 "How long a player may run on after its routine has returned (describe says "
                 "what is usual)")
      ->type_name("N")
      ->check(SecondsProblem);
  run.add_option("--json", m_case.json, "Also write the report to this file; - is stdout")
      ->type_name("FILE")
      ->check(EmptyProblem);
  run.add_flag("--wait", m_case.wait, "Wait for the end of another run in the workspace");
  run.add_flag("--debug", m_case.debug,
               "In this process and without a time limit: for gdb, perf and sanitizers")
      ->excludes("--timeout-s");
  run.add_flag("--strict", m_case.strict, "Take a warning for a failure");
  run.add_flag("--figures", m_case.figures, "Also measure the files of lists");
  run.add_flag("--wav", m_case.wav, "Also write headerless audio outputs as NAME.wav, 16-bit");
  AddColor(run, m_case.color);
  m_staging.AddTo(run, m_case);
  run.add_option("--out", m_case.out, "Write an output to this file: .wav, .flac, .ogg or .raw")
      ->type_name("[NAME=]FILE")
      ->allow_extra_args(false);
  m_run = &run;
}

void RunWords::AddStage(CLI::App& app) {
  CLI::App& stage = *app.add_subcommand(
      "stage", "Put recordings in the places of a routine's inputs, in the form it takes");
  stage.footer("Arguments as for run.");
  AddWork(stage, m_case.work);
  stage.add_flag("--wait", m_case.wait, "Wait for the end of a run in the workspace");
  m_stagingAlone.AddTo(stage, m_case);
}

void RunWords::TakeRun() {
  m_staging.Take(m_case);
  m_case.temporary = !m_case.in.empty() && m_run->count("--work") == 0;
}

void RunWords::TakeStage() { m_stagingAlone.Take(m_case); }

}  // namespace host
