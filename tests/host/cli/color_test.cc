// The colours of verdicts.

#include <gmock/gmock.h>

#include "bench_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "terminal.h"

namespace {

using testing::HasSubstr;
using testing::Not;

using Words = std::vector<std::string>;

constexpr const char* kEscape = "\033[";

class ColorTest : public TerminalTest {
 protected:
  // The probe's command with these words, in an environment with these settings.
  static Words Probe(const Words& words, const Words& settings = {"TERM=xterm"}) {
    Words command = {"/usr/bin/env", "-u", "NO_COLOR", "-u", "TERM"};
    command.insert(command.end(), settings.begin(), settings.end());
    command.emplace_back(AUDIO_BENCH_PROBE);
    command.insert(command.end(), words.begin(), words.end());
    return command;
  }

  static void SetUpSuite() {
    WriteFile("s.toml",
              "[[case]]\nid = \"good\"\nroutine = \"WritePcm\"\n"
              "[[case]]\nid = \"bad\"\nroutine = \"WriteNothing\"\n");
  }

  TemporaryDirectory m_directory;
};

TEST_F(ColorTest, OnATerminalVerdictsHaveTheirColors) {
  EXPECT_THAT(OnTerminal(Probe({"run", "WritePcm"})), HasSubstr("\033[32mpass\033[0m  WritePcm"));
  EXPECT_THAT(OnTerminal(Probe({"run", "WriteNothing"})), HasSubstr("\033[31mfail\033[0m  "));
  EXPECT_THAT(OnTerminal(Probe({"run", "Crash"})), HasSubstr("\033[31merror\033[0m  Crash"));
  EXPECT_THAT(OnTerminal(Probe({"run", "NeedNothing"})), HasSubstr("\033[36mskip\033[0m  "));
  EXPECT_THAT(OnTerminal(Probe({"list", "WritePcm"})), HasSubstr("\033[32mavailable\033[0m  "));
  EXPECT_THAT(OnTerminal(Probe({"list", "NeedNothing"})), HasSubstr("\033[33mlacking\033[0m  "));
  SetUpSuite();
  EXPECT_THAT(OnTerminal(Probe({"suite", "s.toml", "--out", "r"})),
              HasSubstr("\n\033[31mfail\033[0m  bad  "));
}

TEST_F(ColorTest, ElsewhereThereAreNoColorsUnlessAlwaysIsAskedFor) {
  SetUpSuite();
  const std::vector<std::pair<Words, std::string>> commands = {
      {{"run", "WritePcm"}, "\033[32mpass\033[0m  WritePcm"},
      {{"list", "WritePcm"}, "\033[32mavailable\033[0m      "},
      {{"suite", "s.toml"}, "\033[32mpass\033[0m  good  "}};
  for (auto [words, colored] : commands) {
    EXPECT_THAT(RunProcess(Probe(words)).out, Not(HasSubstr(kEscape)));
    words.insert(words.end(), {"--color", "auto"});
    EXPECT_THAT(RunProcess(Probe(words)).out, Not(HasSubstr(kEscape)));
    words.back() = "always";
    EXPECT_THAT(RunProcess(Probe(words)).out, HasSubstr(colored));
    EXPECT_THAT(RunProcess(Probe(words, {"NO_COLOR=1"})).out, HasSubstr(colored));
    words.back() = "never";
    EXPECT_THAT(OnTerminal(Probe(words)), Not(HasSubstr("\033[3")));
  }
}

TEST_F(ColorTest, TheEnvironmentMayTakeThemAway) {
  const Words run = {"run", "WritePcm"};
  EXPECT_THAT(OnTerminal(Probe(run, {"TERM=xterm", "NO_COLOR=1"})), Not(HasSubstr(kEscape)));
  // Set and empty is as if it were not set.
  EXPECT_THAT(OnTerminal(Probe(run, {"TERM=xterm", "NO_COLOR="})), HasSubstr(kEscape));
  EXPECT_THAT(OnTerminal(Probe(run, {"TERM=dumb"})), Not(HasSubstr(kEscape)));
  EXPECT_THAT(OnTerminal(Probe(run, {"TERM="})), Not(HasSubstr(kEscape)));
}

// For a reader who sees none, and for a script.
TEST_F(ColorTest, TheWordsAreTheSameWithColorsAndWithout) {
  for (const Words& words : {Words{"list"}, Words{"list", "*Pcm*", "--available"}}) {
    Words always = words;
    always.insert(always.end(), {"--color", "always"});
    std::string text = RunProcess(Probe(always)).out;
    for (const char* const escape : {"\033[32m", "\033[33m", "\033[36m", "\033[0m"}) {
      for (size_t at = 0; (at = text.find(escape)) != std::string::npos;) {
        text.erase(at, std::string(escape).size());
      }
    }
    EXPECT_EQ(text, RunProcess(Probe(words)).out);
  }
}

TEST_F(ColorTest, DocumentsForProgramsHaveNone) {
  for (const char* const form : {"--json", "--markdown"}) {
    EXPECT_THAT(RunProcess(Probe({"list", form, "--color", "always"})).out,
                Not(HasSubstr(kEscape)));
  }
  SetUpSuite();
  RunProcess(Probe({"suite", "s.toml", "--color", "always", "--out", "r"}));
  for (const char* const name : {"results.json", "results.csv", "junit.xml", "reports/good.txt"}) {
    EXPECT_THAT(ReadFile("r/" + std::string(name)), Not(HasSubstr(kEscape))) << name;
  }
}

TEST_F(ColorTest, OtherWordsAreRefused) {
  const Finished run = RunProcess(Probe({"run", "WritePcm", "--color", "green"}));
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err,
            "audio_bench: --color: is none of auto, always and never: green (audio_bench run "
            "--help)\n");
}

}  // namespace
