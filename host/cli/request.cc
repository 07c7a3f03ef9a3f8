#include "cli/request.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "cli/color_option.h"
#include "cli/compare_words.h"
#include "cli/completion.h"
#include "cli/controls_words.h"
#include "cli/engine_options.h"
#include "cli/manual.h"
#include "cli/measure_words.h"
#include "cli/seconds_word.h"
#include "cli/staging_options.h"
#include "cli/suite_words.h"
#include "cli/synopsis.h"
#include "cli/words.h"

namespace host {

namespace {

std::string EmptyProblem(const std::string& word) { return word.empty() ? "is empty" : ""; }

void AddWork(CLI::App& command, std::string& work) {
  command.add_option("--work", work, "Workspace: all files of the routine are in this folder")
      ->type_name("DIR")
      ->check(EmptyProblem)
      ->capture_default_str();
}

// The command line as CLI11 reads it, filling in a request.
class CommandLine {
 public:
  // `words` are all that were typed, which stay alive.
  CommandLine(Request& request, std::span<const std::string> words)
      : m_request(request), m_words(words) {
    ShowSynopses(m_app);
    m_app.require_subcommand(1);
    m_app.set_version_flag("--version", AUDIO_TESTER_VERSION);
    m_app.footer(kExitCodes);
    AddList();
    AddDescribe();
    AddRun();
    AddDemo();
    AddStage();
    AddReplay();
    AddSelftest();
    m_suite = std::make_unique<SuiteWords>(m_app, m_request.suite, m_request.merge);
    m_measure = std::make_unique<MeasureWords>(m_app, m_request.measure);
    m_compare = std::make_unique<CompareWords>(m_app, m_request.compare, m_request.baseline);
    AddControls(m_app, m_request.controls);
    m_app.add_subcommand("completion", "Print the script by which a shell completes these words")
        ->add_option("SHELL", m_shell, "bash")
        ->required()
        ->check(CLI::IsMember({"bash"}));
    m_app.add_subcommand("manual", "Print the manual page, in roff");
    m_app.add_subcommand("help", "Help on a command");
  }

  // What may stand in the place of a word: the number of that word, and all words from the
  // program's name on.
  std::string Complete(std::span<const std::string> words) const {
    size_t at = 0;
    if (words.empty() || !CLI::detail::lexical_cast(words.front(), at)) return "none\n";
    return Completions(m_app, words.subspan(1), at);
  }

  // The options of a command; null when there is no such command.
  const CLI::App* Command(const std::string& name) const { return FindCommand(m_app, name); }

  // `literal` are the words after "--", of a command whose own words they are not. Throws
  // UsageError.
  void Parse(std::vector<std::string> words, const std::vector<std::string>& literal = {}) {
    m_literal = literal;
    const std::string command = words.empty() ? "" : words.front();
    std::reverse(words.begin(), words.end());  // As CLI11 takes them.
    try {
      m_app.parse(words);
    } catch (const CLI::CallForHelp&) {
      m_request.text = m_app.help();
      return;
    } catch (const CLI::CallForVersion&) {
      m_request.text = AUDIO_TESTER_VERSION "\n";
      return;
    } catch (const CLI::ParseError& error) {
      const std::string subject = m_app.get_subcommands().empty() ? "" : command + " ";
      throw UsageError{std::string(error.what()) + " (audio_bench " + subject + "--help)"};
    }
    Take();
  }

 private:
  void AddList() {
    m_list = m_app.add_subcommand("list", "The catalogue of all routines, or of some");
    m_list->add_option("GLOB", m_request.filter.glob, "Only names like this: 'Test*Reverb*'")
        ->type_name("");
    m_list->add_flag("--available", m_request.filter.available, "Only routines that can be run");
    m_list->add_option("--group", m_request.filter.group, "Only this group")->type_name("G");
    m_list->add_flag("--json", m_json, "For programs");
    m_list->add_flag("--markdown", m_markdown, "As a document")->excludes("--json");
    AddColor(*m_list, m_request.color);
    AddEngine(*m_list, m_request.run.engine);
    AddEngineOnly(*m_list, m_request.run.engineOnly);
  }

  void AddDescribe() {
    CLI::App& describe = *m_app.add_subcommand(
        "describe", "All that is known of one routine, or of a run of it with these arguments");
    describe.add_option("ROUTINE", m_request.routine)->required();
    describe.add_option("ARGUMENT", m_request.words);
    describe.add_flag("--json", m_json, "For programs");
    AddEngine(describe, m_request.run.engine);
    AddEngineOnly(describe, m_request.run.engineOnly);
  }

  void AddDemo() {
    CLI::App& demo = *m_app.add_subcommand(
        "demo", "Put a recording in place for the selected test, if there is none");
    AddWork(demo, m_request.run.work);
    demo.add_flag("--all", m_all, "For every routine that reads any; what is there stays");
  }

  void AddRun() {
    Case& options = m_request.run;
    CLI::App& run = *m_app.add_subcommand("run", "Run one routine in a process of its own");
    run.footer(
        "Without a routine: the selected test (RunTestCase). Arguments are one word each, in the\n"
        "declared order; after \"--\" every word is an argument. With --in and --out those that "
        "name\n"
        "files may be left out, all of them, and the workspace is a temporary one unless it is "
        "given.");
    AddWork(run, options.work);
    AddEngine(run, options.engine);
    AddEngineOnly(run, options.engineOnly);
    run.add_option("--timeout-s", options.timeout,
                   "End a run that takes longer, in seconds (600; a routine that never returns "
                   "is stopped after 10)")
        ->type_name("N")
        ->check(SecondsProblem);
    run.add_option("--linger-s", options.linger,
                   "How long a player may run on after its routine has returned (describe says "
                   "what is usual)")
        ->type_name("N")
        ->check(SecondsProblem);
    run.add_option("--json", options.json, "Also write the report to this file; - is stdout")
        ->type_name("FILE")
        ->check(EmptyProblem);
    run.add_flag("--wait", options.wait, "Wait for the end of another run in the workspace");
    run.add_flag("--debug", options.debug,
                 "In this process and without a time limit: for gdb, perf and sanitizers")
        ->excludes("--timeout-s");
    run.add_flag("--strict", options.strict, "Take a warning for a failure");
    run.add_flag("--figures", options.figures, "Also measure the files of lists");
    run.add_flag("--wav", options.wav, "Also write headerless audio outputs as NAME.wav, 16-bit");
    AddColor(run, options.color);
    m_staging.AddTo(run, options);
    run.add_option("--out", options.out, "Write an output to this file: .wav, .flac, .ogg or .raw")
        ->type_name("[NAME=]FILE")
        ->allow_extra_args(false);
    m_run = &run;
  }

  void AddStage() {
    CLI::App& stage = *m_app.add_subcommand(
        "stage", "Put recordings in the places of a routine's inputs, in the form it takes");
    stage.footer("Arguments as for run.");
    AddWork(stage, m_request.run.work);
    stage.add_flag("--wait", m_request.run.wait, "Wait for the end of a run in the workspace");
    m_stagingAlone.AddTo(stage, m_request.run);
  }

  void AddReplay() {
    CLI::App& replay = *m_app.add_subcommand(
        "replay", "Run again what a report tells of, and compare the outputs");
    replay.footer(
        "REPORT.json is of run --json, or the folder of a case of a suite (DIR/cases/ID). Exit "
        "codes:\n"
        "0 same bytes, 1 something differs, 3 the run cannot be done again.");
    replay.add_option("REPORT", m_request.replay.report)->required()->type_name("");
  }

  void AddSelftest() {
    CLI::App& selftest =
        *m_app.add_subcommand("selftest", "Prove the measures on signals that theory knows");
    selftest.footer(
        "One line per measure: its controls that hold, and the worst deviation over its\n"
        "tolerance. What is found is kept for this build: figures of a measure that does not\n"
        "hold are untrusted in every report. Exit codes: 0 all hold, 1 not.");
    selftest.add_flag("--json", m_json, "For programs");
  }

  // Fills in what the options do not set by themselves.
  void Take() {
    const std::string command = m_app.get_subcommands().front()->get_name();
    using Command = Request::Command;
    m_request.command = command == "list"       ? Command::kList
                        : command == "describe" ? Command::kDescribe
                        : command == "run"      ? Command::kRun
                        : command == "stage"    ? Command::kStage
                        : command == "suite"    ? Command::kSuite
                        : command == "merge"    ? Command::kMerge
                        : command == "replay"   ? Command::kReplay
                        : command == "measure"  ? Command::kMeasure
                        : command == "compare"  ? Command::kCompare
                        : command == "baseline" ? Command::kBaseline
                        : command == "selftest" ? Command::kSelftest
                        : command == "controls" ? Command::kControls
                        : m_all                 ? Command::kDemoAll
                                                : Command::kDemo;
    if (command == "manual" || command == "completion") {
      m_request.command = Command::kPrint;
      m_request.text = command == "manual" ? ManualPage(m_app) : BashCompletion();
    }
    if (command == "suite") m_suite->TakeSuite(m_words);
    if (command == "merge") m_suite->TakeMerge(m_words);
    if (command == "measure") m_measure->Take();
    if (command == "compare") m_compare->TakeCompare(m_literal);
    if (command == "baseline") m_compare->TakeBaseline();
    if (m_json) m_request.form = Request::Form::kJson;
    Case& run = m_request.run;
    (m_request.command == Command::kStage ? m_stagingAlone : m_staging).Take(run);
    run.temporary =
        m_request.command == Command::kRun && !run.in.empty() && m_run->count("--work") == 0;
    if (m_markdown) m_request.form = Request::Form::kMarkdown;
  }

  Request& m_request;
  std::span<const std::string> m_words;
  std::vector<std::string> m_literal;
  std::unique_ptr<SuiteWords> m_suite;
  std::unique_ptr<MeasureWords> m_measure;
  std::unique_ptr<CompareWords> m_compare;
  CLI::App m_app{"Runs the routines of the audio engine's test bench.", "audio_bench"};
  CLI::App* m_list = nullptr;
  CLI::App* m_run = nullptr;
  StagingOptions m_staging;
  StagingOptions m_stagingAlone;
  bool m_json = false;
  std::string m_shell;
  bool m_markdown = false;
  bool m_all = false;
};

// Throws UsageError when there is no such command, with a suggestion.
void CheckCommand(const std::string& word) {
  std::vector<std::string_view> commands;
  for (const Synopsis& each : Synopses()) commands.push_back(each.command);
  if (std::find(commands.begin(), commands.end(), word) != commands.end()) return;
  std::string message = "no command is called \"" + word + "\"; ";
  const auto alike = NamesAlike(word, commands);
  const auto routines = RoutinesAlike(word);
  if (!alike.empty()) {
    message += "did you mean " + std::string(alike.front()) + "?";
  } else if (!routines.empty()) {
    message += "did you mean run " + std::string(routines.front()) + "?";
  } else {
    message += "\"audio_bench help\" names them all";
  }
  throw UsageError{message};
}

// Replaces "help", "help COMMAND" and "COMMAND help" by the option --help.
void TurnHelpIntoOption(std::vector<std::string>& words) {
  if (words.empty() || words.size() > 2) return;
  if (words.front() == "help") std::rotate(words.begin(), std::next(words.begin()), words.end());
  if (words.back() == "help") words.back() = "--help";
}

// Fills in what the words after a command ask for. Throws UsageError.
void Take(const std::string& command, const Words& words, CommandLine& line, Request& request) {
  if (!words.fault().empty()) {
    throw UsageError{words.fault()};
  }
  std::vector<std::string> read = {command};
  read.insert(read.end(), words.options().begin(), words.options().end());
  if (command != "run" && command != "stage") {
    const bool describes = command == "describe";
    if (!words.literal().empty() && !describes && command != "compare") {
      throw UsageError{"unexpected " + words.literal().front()};
    }
    read.insert(read.end(), words.free().begin(), words.free().end());
    if (describes && !words.literal().empty()) {
      read.push_back("--");
      read.insert(read.end(), words.literal().begin(), words.literal().end());
    }
    line.Parse(read, words.literal());
    return;
  }
  line.Parse(read);
  std::vector<std::string> routine = words.free();
  routine.insert(routine.end(), words.literal().begin(), words.literal().end());
  if (routine.empty() && command == "stage" && request.text.empty())
    throw UsageError{"stage needs the name of a routine"};
  if (routine.empty()) return;
  request.run.routine = routine.front();
  request.run.arguments.assign(std::next(routine.begin()), routine.end());
}

}  // namespace

Request ParseRequest(std::span<const std::string> words) {
  if (!words.empty() && words.front() == "complete") {
    Request request;
    request.text = CommandLine(request, words).Complete(words.subspan(1));
    return request;
  }
  std::vector<std::string> read(words.begin(), words.end());
  TurnHelpIntoOption(read);
  if (!read.empty() && !read.front().starts_with('-')) CheckCommand(read.front());

  Request request;
  CommandLine line(request, words);
  const CLI::App* const command = read.empty() ? nullptr : line.Command(read.front());
  if (command == nullptr) {
    line.Parse(read);
    return request;
  }
  const Words told(*command, std::span(read).subspan(1));
  try {
    Take(read.front(), told, line, request);
  } catch (const UsageError& error) {
    if (read.front() != "run") throw;
    throw RefusedRequest{error, told.Values("--json")};
  }
  return request;
}

}  // namespace host
