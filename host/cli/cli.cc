#include "cli/cli.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <system_error>

#include "base/exit_code.h"
#include "base/usage_error.h"
#include "catalogue/list.h"
#include "demo/demo.h"
#include "report/output.h"
#include "run/run.h"

namespace host {

namespace {

struct Request {
  RunOptions run;
  std::string described;
  bool json = false;
  bool markdown = false;
};

constexpr const char* kExitCodes =
    "Exit codes: 0 pass, 1 fail, 2 not run as asked (usage) or results not delivered, 3 an input\n"
    "is missing or unreadable, 4 crash or time-out, 77 skip.";

int TerminalWidth() {
  winsize size = {};
  const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? std::min<int>(size.ws_col, 120) : 100;
}

// Words that start with '-' are options, except for numbers.
bool IsOption(const std::string& word) {
  return word.size() > 1 && word[0] == '-' && word[1] != '.' &&
         std::isdigit(static_cast<unsigned char>(word[1])) == 0;
}

std::string TimeoutProblem(const std::string& word) {
  double seconds = 0;
  const char* const end = word.data() + word.size();
  const auto [last, error] = std::from_chars(word.data(), end, seconds);
  const bool fits = error == std::errc() && last == end && seconds > 0 && seconds <= 1e6;
  return fits ? "" : "not a number of seconds between 0 and 1000000: " + word;
}

CLI::App* AddRun(CLI::App& app, RunOptions& options) {
  CLI::App* const run = app.add_subcommand(
      "run", "Run one routine in a process of its own: run [ROUTINE [ARGUMENT...]] [OPTIONS]");
  run->footer(
      "Without a routine: the selected test (RunTestCase). Arguments are one word each, in the\n"
      "declared order; after \"--\" every word is an argument.");
  run->add_option("--work", options.work, "Workspace: all files of the routine are in this folder")
      ->type_name("DIR")
      ->capture_default_str();
  run->add_option("--timeout-s", options.timeout, "End a run that takes longer, in seconds")
      ->type_name("N")
      ->check(TimeoutProblem)
      ->capture_default_str();
  run->add_option("--json", options.json, "Also write the report to this file")->type_name("FILE");
  run->add_flag("--wav", options.wav, "Also write headerless audio outputs as NAME.wav, 16-bit");
  run->allow_extras();  // Routine and arguments: CLI11 would take -1 for an option.
  return run;
}

// Routine and arguments from what is no option.
void TakeWords(const std::vector<std::string>& free, const std::vector<std::string>& literal,
               RunOptions& options) {
  for (const std::string& word : free) {
    if (IsOption(word)) throw UsageError{"unknown option " + word};
  }
  std::vector<std::string> words = free;
  words.insert(words.end(), literal.begin(), literal.end());
  if (words.empty()) return;
  options.routine = words.front();
  options.arguments.assign(words.begin() + 1, words.end());
}

int Parse(CLI::App& app, std::vector<std::string> words) {
  std::reverse(words.begin(), words.end());  // As CLI11 takes them.
  try {
    app.parse(words);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // Help or version.
    throw UsageError{std::string(error.what()) + " (audio_bench --help)"};
  }
  return -1;
}

int Execute(const std::vector<std::string>& words, const std::vector<std::string>& literal) {
  Request request;
  CLI::App app("Runs the routines of the audio engine's test bench.", "audio_bench");
  app.require_subcommand(1);
  app.set_version_flag("--version", AUDIO_TESTER_VERSION);
  app.footer(kExitCodes);
  CLI::App* const list = app.add_subcommand("list", "The catalogue of all routines");
  list->add_flag("--json", request.json, "For programs");
  list->add_flag("--markdown", request.markdown, "As a document")->excludes("--json");
  CLI::App* const describe = app.add_subcommand("describe", "All that is known of one routine");
  describe->add_option("ROUTINE", request.described)->required();
  CLI::App* const run = AddRun(app, request.run);
  CLI::App* const demo = app.add_subcommand(
      "demo", "Put a recording in place for the selected test, if there is none");
  demo->add_option("--work", request.run.work, "Workspace")
      ->type_name("DIR")
      ->capture_default_str();

  if (const int code = Parse(app, words); code >= 0) return code;
  if (!literal.empty() && !run->parsed()) throw UsageError{"unexpected " + literal.front()};
  if (run->parsed()) {
    TakeWords(run->remaining(), literal, request.run);
    return Run(request.run);
  }
  std::string text;
  if (demo->parsed()) text = PlaceDemo(request.run.work);
  if (describe->parsed()) text = Describe(request.described);
  if (list->parsed()) {
    text = request.json       ? ListAsJson()
           : request.markdown ? ListAsMarkdown()
                              : ListAsText(TerminalWidth());
  }
  return PrintResults(text);
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
  const std::vector<std::string> all(argv + std::min(argc, 1), argv + argc);
  const auto mark = std::find(all.begin(), all.end(), "--");
  const std::vector<std::string> words(all.begin(), mark);
  const std::vector<std::string> literal(mark == all.end() ? mark : mark + 1, all.end());
  try {
    return Execute(words, literal);
  } catch (const UsageError& error) {
    fprintf(stderr, "audio_bench: %s\n", error.message.c_str());
  } catch (const std::system_error& error) {
    fprintf(stderr, "audio_bench: %s\n", error.what());
  }
  return exit_code::kUsage;
}

}  // namespace host
