// The line that a terminal shows during a long run, at times of the test's.

#include <gmock/gmock.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "process/progress.h"
#include "terminal.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

class ProgressLine : public TerminalTest {
 protected:
  // What a terminal shows of it.
  static std::string Shown(uint64_t expectedFiles, const std::function<void(Progress&)>& tell) {
    return OnTerminal([&] {
      Progress progress("Long", expectedFiles);
      tell(progress);
    });
  }
};

TEST_F(ProgressLine, IsNotShownInTheFirstSecond) {
  const FileActivity files;
  EXPECT_EQ(Shown(2, [&](Progress& progress) { progress.Show(0.99, files); }), "");
  EXPECT_EQ(Shown(2, [&](Progress& progress) { progress.Show(1, files); }),
            "\r\033[KLong  1 s  files opened: 0 of 2\r\033[K");
}

TEST_F(ProgressLine, IsShownAnewFourTimesASecond) {
  FileActivity files;
  const std::string shown = Shown(0, [&](Progress& progress) {
    for (const double elapsed : {3.0, 3.1, 3.24, 3.25, 3.49, 3.5}) {
      ++files.opened;
      progress.Show(elapsed, files);
    }
  });
  EXPECT_EQ(shown,
            "\r\033[KLong  3 s  files opened: 1"
            "\r\033[KLong  3 s  files opened: 4"
            "\r\033[KLong  4 s  files opened: 6\r\033[K");
}

TEST_F(ProgressLine, GivesWayToWhatIsPrinted) {
  const FileActivity files;
  const std::string shown = Shown(1, [&](Progress& progress) {
    progress.Show(2, files);
    progress.PrintOutput("out\n");
    progress.Show(3, files);
    progress.PrintError("");
    progress.PrintError("part");
    progress.Show(4, files);
    progress.PrintError(" and end\n");
    progress.Show(5, files);
  });
  EXPECT_EQ(shown,
            "\r\033[KLong  2 s  files opened: 0 of 1\r\033[Kout\r\n"
            "\r\033[KLong  3 s  files opened: 0 of 1\r\033[Kpart and end\r\n"
            "\r\033[KLong  5 s  files opened: 0 of 1\r\033[K");
}

TEST_F(ProgressLine, EstimatesWhenManyFilesWillBeDone) {
  FileActivity files;
  files.opened = 15;
  const auto line = [&](uint64_t expected, uint64_t done) {
    files.done = done;
    return Shown(expected, [&](Progress& progress) { progress.Show(10, files); });
  };
  EXPECT_THAT(line(19, 10), HasSubstr("10 s  files opened: 15 of 19\r"));
  EXPECT_THAT(line(20, 5), HasSubstr("10 s  files done: 5 of 20  about 30 s left\r"));
  EXPECT_THAT(line(20, 0), HasSubstr("files done: 0 of 20\r"));
  EXPECT_THAT(line(20, 20), HasSubstr("files done: 20 of 20\r"));
  EXPECT_THAT(line(20, 21), HasSubstr("files done: 21\r"));
  EXPECT_THAT(line(14, 0), HasSubstr("files opened: 15\r"));
}

TEST_F(ProgressLine, IsForTerminals) {
  const FileActivity files;
  const std::string shown = OnTerminal([&] {
    const int terminal = dup(STDERR_FILENO);
    int ends[2] = {};
    if (pipe(ends) != 0) return;
    dup2(ends[1], STDERR_FILENO);
    Progress progress("Long", 1);
    dup2(terminal, STDERR_FILENO);
    progress.Show(2, files);
  });
  EXPECT_THAT(shown, Not(HasSubstr("Long")));
}

}  // namespace
}  // namespace host
