// What a terminal shows during a long run.

#include <gmock/gmock.h>

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

TEST_F(Progress, ShowsAfterASecondAndGivesWayToTheReport) {
  const std::string shown =
      OnTerminal({AUDIO_BENCH_PROBE, "run", "--color", "never", "Hang", "--timeout-s", "1.1"});
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
  const std::string shown =
      OnTerminal({AUDIO_BENCH_PROBE, "run", "--color", "never", "CopyList", "40"});
  EXPECT_THAT(shown, testing::ContainsRegex("\r\033\\[KCopyList  1 s  files done: [1-9][0-9]* of 82"
                                            "  about [0-9]+ s left"));
}

TEST_F(Progress, IsNotShownForAShortRun) {
  const std::string shown =
      OnTerminal({AUDIO_BENCH_PROBE, "run", "--color", "never", "PrintAndLog"});
  EXPECT_THAT(shown, testing::HasSubstr("logged\r\n"));
  EXPECT_THAT(shown, testing::Not(testing::HasSubstr("\033[K")));
}

}  // namespace
