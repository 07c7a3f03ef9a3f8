#include "cli/manual.h"

#include <CLI/CLI.hpp>
#include <string_view>
#include <vector>

#include "cli/synopsis.h"

namespace host {

namespace {

// Text as roff shows it unchanged: line breaks become blanks, and what would be a request at the
// start of a line is none.
std::string Roff(std::string_view text) {
  std::string safe;
  for (const char each : text) {
    if (each == '\\') {
      safe += "\\e";
    } else if (each == '-') {
      safe += "\\-";
    } else if (each == '\n') {
      safe += ' ';
    } else {
      safe += each;
    }
  }
  return safe.starts_with('.') || safe.starts_with('\'') ? "\\&" + safe : safe;
}

// The name of a value without what it is checked for: "N" of "N:INT in [1 - 1024]".
std::string ValueName(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  return type.substr(0, type.find(':'));
}

std::string OptionText(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : option.get_snames()) names += ", -" + name;
  for (const std::string& name : option.get_lnames()) names += ", --" + name;
  std::string text = ".TP\n\\fB" + Roff(names.substr(2)) + "\\fR";
  if (option.get_items_expected_min() > 0) text += " \\fI" + Roff(ValueName(option)) + "\\fR";
  std::string description = option.get_description();
  if (const std::string value = option.get_default_str(); !value.empty()) {
    description += " (" + value + ")";
  }
  return text + "\n" + Roff(description) + ".\n";
}

std::string CommandText(const CLI::App& command, std::string_view arguments) {
  std::string text = ".SS \"audio_bench " + Roff(command.get_name()) +
                     (arguments.empty() ? "" : " ") + Roff(arguments) + "\"\n" +
                     Roff(command.get_description()) + ".\n";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional() && option->get_name() != "--help") text += OptionText(*option);
  }
  const std::string footer = command.get_footer();
  return footer.empty() || footer == kExitCodes ? text : text + ".PP\n" + Roff(footer) + "\n";
}

constexpr const char* kAfterCommands = R"(.SH "EXIT STATUS"
.TP
.B 0
The verdict is pass, or warn: the run did what it should, and the first line says what to know.
.TP
.B 1
The verdict is fail: an output is not what it should be.
.TP
.B 2
Wrong usage, or a workspace, log or report that cannot be written.
.TP
.B 3
An input is missing or unreadable.
.TP
.B 4
The routine crashed or ran out of time.
.TP
.B 77
Skipped: not a routine to run.
.PP
A suite ends with the worst of its cases: 4, 3, 1, else 0; 77 when all were skipped.
What a signal has ended ends by that signal.
.SH ENVIRONMENT
.TP
.B NO_COLOR
Set to something, verdicts have no colours unless \fB\-\-color\fR asks for them.
.TP
.B TMPDIR
Where temporary workspaces are made.
.SH FILES
.TP
.I bench_work/
The workspace of \fBrun\fR, \fBstage\fR and \fBdemo\fR unless \fB\-\-work\fR names another one.
.TP
.I bench_results/latest
The results of the last \fBsuite\fR without \fB\-\-out\fR: results.json, results.csv and junit.xml.
.SH EXAMPLES
.EX
audio_bench run \-\-in song.flac \-\-out heard.wav
audio_bench run TestZUAec \-\-in mic.flac \-\-in speaker.flac \-\-out clean.wav \-\- true
audio_bench suite calls.toml \-\-strict
.EE
)";

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::string text = ".TH AUDIO_BENCH 1 \"\" \"audio_tester " AUDIO_TESTER_VERSION
                     "\" \"User Commands\"\n"
                     ".SH NAME\naudio_bench \\- runs the routines of an audio engine's test bench\n"
                     ".SH SYNOPSIS\n";
  for (const Synopsis& each : Synopses()) {
    text += ".B audio_bench " + std::string(each.command) + "\n";
    if (!each.arguments.empty()) text += Roff(each.arguments) + "\n";
    text += ".br\n";
  }
  text +=
      ".SH DESCRIPTION\n"
      "Each routine drives one facility of the engine over recorded audio and writes what came "
      "out.\n"
      "It runs in a process and a workspace of its own; the files are held against what they were "
      "made from,\n"
      "and a verdict says what became of the run.\n"
      ".SH COMMANDS\n";
  for (const Synopsis& each : Synopses()) {
    text += CommandText(*app.get_subcommand(std::string(each.command)), each.arguments);
  }
  return text + kAfterCommands;
}

}  // namespace host
