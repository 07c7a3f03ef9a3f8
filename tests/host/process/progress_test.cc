// What a terminal shows during a long run. The runs go on until it has been seen.

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "terminal.h"

namespace {

class Progress : public TerminalTest {
 protected:
  TemporaryDirectory m_directory;
};

TEST_F(Progress, IsShownAndGivesWayToTheReport) {
  const std::string shown = OnTerminalUntil(
      "files opened: 1 of 1", SIGINT,
      {AUDIO_BENCH_PROBE, "run", "--color", "never", "Hang", "--timeout-s", "86400"});
  EXPECT_THAT(shown, testing::ContainsRegex("\r\033\\[KHang  [1-9][0-9]* s  files opened: 1 of 1"));
  EXPECT_THAT(shown, testing::HasSubstr("\r\033[Kerror  Hang  interrupted"));
}

TEST_F(Progress, EstimatesWhenManyFilesWillBeDone) {
  std::filesystem::create_directories("bench_work/list");
  WriteFile("bench_work/list/in0.pcm", std::string(320, 'x'));
  WriteFile("bench_work/list/far0.pcm", std::string(320, 'x'));
  const std::string kHour = "3600000";  // ms that it rests after each file
  const std::string shown = OnTerminalUntil(
      "files done: 2 of 82  about ", SIGINT,
      {AUDIO_BENCH_PROBE, "run", "--color", "never", "CopyList", kHour, "--timeout-s", "86400"});
  EXPECT_THAT(shown, testing::ContainsRegex("\r\033\\[KCopyList  [1-9][0-9]* s  files done: 2 of 82"
                                            "  about [0-9]+ s left"));
}

}  // namespace
