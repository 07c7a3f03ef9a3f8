// What a terminal shows during a long run.

#include <gmock/gmock.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "support/temporary_directory.h"

namespace {

// All that a command prints on a terminal.
std::string OnTerminal(const char* program, const std::vector<const char*>& words) {
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    std::vector<char*> arguments = {const_cast<char*>(program)};
    for (const char* word : words) arguments.push_back(const_cast<char*>(word));
    arguments.push_back(nullptr);
    execv(program, arguments.data());
    _exit(126);
  }
  std::string shown;
  char bytes[4096];
  for (ssize_t count = 0; (count = read(terminal, bytes, sizeof bytes)) > 0;) {
    shown.append(bytes, static_cast<size_t>(count));
  }
  close(terminal);
  waitpid(child, nullptr, 0);
  return shown;
}

TEST(Progress, ShowsAfterASecondAndGivesWayToTheReport) {
  const TemporaryDirectory directory;
  const std::string shown = OnTerminal(AUDIO_BENCH_PROBE, {"run", "Hang", "--timeout-s", "1.1"});
  const size_t progress = shown.find("\r\033[KHang  1 s  files opened: 1 of 1");
  ASSERT_NE(progress, std::string::npos) << testing::PrintToString(shown);
  EXPECT_LT(shown.find("hanging\r\n"), progress) << "nothing is shown in the first second";
  const size_t report = shown.find("\r\033[Kerror  Hang");
  EXPECT_NE(report, std::string::npos) << testing::PrintToString(shown);
  EXPECT_LT(progress, report);
}

TEST(Progress, IsNotShownForAShortRun) {
  const TemporaryDirectory directory;
  const std::string shown = OnTerminal(AUDIO_BENCH_PROBE, {"run", "PrintAndLog"});
  EXPECT_THAT(shown, testing::HasSubstr("logged\r\n"));
  EXPECT_THAT(shown, testing::Not(testing::HasSubstr("\033[K")));
}

}  // namespace
