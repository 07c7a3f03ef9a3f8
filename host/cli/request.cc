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
#include "cli/compare_words.h"
#include "cli/completion.h"
#include "cli/controls_words.h"
#include "cli/list_words.h"
#include "cli/manual.h"
#include "cli/measure_words.h"
#include "cli/report_page_words.h"
#include "cli/run_words.h"
#include "cli/suite_words.h"
#include "cli/synopsis.h"
#include "cli/words.h"

namespace host {

namespace {

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
    m_list = std::make_unique<ListWords>(m_app, m_request);
    m_run = std::make_unique<RunWords>(m_app, m_request.run, m_request.replay);
    AddDemo();
    AddSelftest();
    m_suite = std::make_unique<SuiteWords>(m_app, m_request.suite, m_request.merge);
    m_measure = std::make_unique<MeasureWords>(m_app, m_request.measure);
    m_compare = std::make_unique<CompareWords>(m_app, m_request.compare, m_request.baseline);
    AddControls(m_app, m_request.controls);
    AddReportPage(m_app, m_request.page);
    AddOpen(m_app, m_request.opened);
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
  void AddDemo() {
    CLI::App& demo = *m_app.add_subcommand(
        "demo", "Put a recording in place for the selected test, if there is none");
    AddWork(demo, m_request.run.work);
    demo.add_flag("--all", m_all, "For every routine that reads any; what is there stays");
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
                        : command == "report"   ? Command::kReportPage
                        : command == "open"     ? Command::kOpen
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
    if (command == "run") m_run->TakeRun();
    if (command == "stage") m_run->TakeStage();
    m_list->Take();
    if (m_json) m_request.form = Request::Form::kJson;
  }

  Request& m_request;
  std::span<const std::string> m_words;
  std::vector<std::string> m_literal;
  std::unique_ptr<ListWords> m_list;
  std::unique_ptr<RunWords> m_run;
  std::unique_ptr<SuiteWords> m_suite;
  std::unique_ptr<MeasureWords> m_measure;
  std::unique_ptr<CompareWords> m_compare;
  CLI::App m_app{"Runs the routines of the audio engine's test bench.", "audio_bench"};
  bool m_json = false;
  std::string m_shell;
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
