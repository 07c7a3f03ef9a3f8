// What is seen of a suite while it runs.

#include <algorithm>

#include "suite_fixture.h"
#include "terminal.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

// One case fails at once, the other one lasts for a second.
class SuiteProgressTest : public TerminalTest {
 protected:
  static std::vector<std::string> Command() {
    const auto one = [](const std::string& id, const std::string& routine) {
      return "[[case]]\nid = \"" + id + "\"\nroutine = \"" + routine + "\"\n";
    };
    WriteFile("s.toml", one("bad", "WriteNothing") + one("long", "Hang") + "timeout_s = 1\n");
    return {AUDIO_BENCH_PROBE, "suite", "s.toml", "-j1", "--out", "r"};
  }

  TemporaryDirectory m_directory;
};

TEST_F(SuiteProgressTest, OnATerminalOneLineSaysHowFarItIs) {
  const std::string shown = OnTerminal(Command());
  EXPECT_THAT(shown, ContainsRegex("\r\033\\[K1 of 2, 1 failed, about [0-9]+ s left"));
  // It is one line, which is gone at the end.
  const size_t last = shown.rfind("of 2, 1 failed");
  const std::string progress = shown.substr(0, last);
  EXPECT_EQ(std::count(progress.begin(), progress.end(), '\n'), 0) << shown;
  EXPECT_THAT(shown.substr(last), HasSubstr("\r\033[K"));
  EXPECT_THAT(shown.substr(last), HasSubstr("0 passed, 2 failed, 0 skipped\r\n"));
}

TEST_F(SuiteProgressTest, ElseThereIsALineForEachCase) {
  const Finished suite = RunProcess(Command());
  EXPECT_THAT(suite.out, ContainsRegex("^fail  bad  [^\n]*\nerror long  [^\n]*\n\n"));
  EXPECT_THAT(suite.out, Not(HasSubstr("of 2")));
  EXPECT_EQ(suite.err, "");
}

}  // namespace
