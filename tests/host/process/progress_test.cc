// What a terminal shows during a long run.

#include <gmock/gmock.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/file_bytes.h"
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

class Progress : public testing::Test {
 protected:
  void SetUp() override {
    int terminal = -1;
    int other = -1;
    if (openpty(&terminal, &other, nullptr, nullptr, nullptr) != 0) {
      GTEST_SKIP() << "this machine has no pseudo-terminals (/dev/pts)";
    }
    close(terminal);
    close(other);
  }

  TemporaryDirectory m_directory;
};

TEST_F(Progress, ShowsAfterASecondAndGivesWayToTheReport) {
  const std::string shown = OnTerminal(AUDIO_BENCH_PROBE, {"run", "Hang", "--timeout-s", "1.1"});
  EXPECT_THAT(shown, testing::ContainsRegex("\r\033\\[KHang  [1-9][0-9]* s  files opened: 1 of 1"));
  const size_t progress = shown.find("\r\033[KHang  ");
  EXPECT_LT(shown.find("hanging\r\n"), progress) << "nothing is shown in the first second";
  EXPECT_GT(shown.find("\r\033[Kerror  Hang"), progress);
  EXPECT_THAT(shown, testing::HasSubstr("\r\033[Kerror  Hang"));
}

TEST_F(Progress, EstimatesWhenManyFilesWillBeDone) {
  std::filesystem::create_directories("bench_work/list");
  WriteFile("bench_work/list/in0.pcm", std::string(320, 'x'));
  WriteFile("bench_work/list/far0.pcm", std::string(320, 'x'));
  const std::string shown = OnTerminal(AUDIO_BENCH_PROBE, {"run", "CopyList", "40"});
  EXPECT_THAT(shown, testing::ContainsRegex("\r\033\\[KCopyList  1 s  files done: [1-9][0-9]* of 82"
                                            "  about [0-9]+ s left"));
}

TEST_F(Progress, IsNotShownForAShortRun) {
  const std::string shown = OnTerminal(AUDIO_BENCH_PROBE, {"run", "PrintAndLog"});
  EXPECT_THAT(shown, testing::HasSubstr("logged\r\n"));
  EXPECT_THAT(shown, testing::Not(testing::HasSubstr("\033[K")));
}

}  // namespace
