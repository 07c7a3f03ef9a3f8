// A text that lists further inputs is looked at, within bounds, before it is read.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "run/run_fixture.h"

namespace {

using testing::HasSubstr;

namespace fs = std::filesystem;

class ListReadingTest : public RunTest {
 protected:
  ListReadingTest() { fs::create_directory("bench_work"); }

  static Finished RunList(const std::string& options = "") {
    return RunProcess({"/bin/sh", "-c",
                       "exec timeout -s KILL 60 '" AUDIO_BENCH_PROBE "' run ReadList " + options});
  }
};

TEST_F(ListReadingTest, TheFilesInItAreInputs) {
  Put("list.txt", "a\nb\n");
  Put("a", "1");
  EXPECT_EQ(RunList().exitCode, 3);
  EXPECT_THAT(RunList().out, HasSubstr("input b (bench_work/b): No such file or directory"));
  Put("b", "2");
  EXPECT_EQ(RunList().exitCode, 0);
  fs::remove("bench_work/list.txt");
  EXPECT_EQ(RunList().exitCode, 0) << "it may be absent";
}

TEST_F(ListReadingTest, ItIsARegularFileOrNotRead) {
  ASSERT_EQ(mkfifo("bench_work/list.txt", 0600), 0);
  for (const char* const target : {"", "/dev/zero"}) {
    if (*target != '\0') {
      fs::remove("bench_work/list.txt");
      fs::create_symlink(target, "bench_work/list.txt");
    }
    const Finished run = RunList();
    EXPECT_EQ(run.exitCode, 3) << target;
    EXPECT_THAT(run.out, HasSubstr("input list.txt (bench_work/list.txt): Not a regular file"));
  }
}

TEST_F(ListReadingTest, ItHasABound) {
  Put("list.txt", "");
  fs::resize_file("bench_work/list.txt", 100'000'000'000);
  const Finished run = RunList();
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("input list.txt (bench_work/list.txt): longer than 4.0 MB"));
}

TEST_F(ListReadingTest, ItsTimeIsThatOfTheRun) {
  Put("list.txt", "a\n");
  const Finished run = RunList("--timeout-s 0.000001 --json report.json");
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out, HasSubstr("while looking at its inputs"));
}

TEST_F(ListReadingTest, NoFileOfItIsTheReport) {
  Put("list.txt", "a\n");
  Put("a", "mine");
  const Finished run = RunList("--json bench_work/a");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("the report and input a are one file"));
  EXPECT_EQ(ReadFile("bench_work/a"), "mine");
}

}  // namespace
