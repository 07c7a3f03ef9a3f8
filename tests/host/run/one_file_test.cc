// A run neither loses a file by writing over it nor touches anything outside its workspace, and it
// has the workspace for itself.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>

#include <filesystem>

#include "run/run_fixture.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

const std::string kSamples(400, 's');

class OneFileTest : public RunTest {
 protected:
  OneFileTest() { Put("in", kSamples); }

  // The run is refused and leaves the workspace as it was.
  static void ExpectRefused(const std::vector<std::string>& words, const std::string& message) {
    const auto count = [] {
      return std::distance(fs::recursive_directory_iterator("."),
                           fs::recursive_directory_iterator());
    };
    const auto before = count();
    const Finished run = Run(words);
    EXPECT_EQ(run.exitCode, 2) << message;
    EXPECT_EQ(run.err, "audio_bench: " + message + "\n");
    EXPECT_EQ(count(), before) << message;
    EXPECT_EQ(ReadFile("bench_work/in"), kSamples) << message;
  }
};

TEST_F(OneFileTest, RefusesAnOutputThatIsTheInput) {
  ExpectRefused({"Copy", "in", "in"}, "output in and input in are one file: bench_work/in");
  ExpectRefused({"Copy", "in", "./in"}, "output ./in and input in are one file: bench_work/in");
  fs::create_hard_link("bench_work/in", "bench_work/hard");
  ExpectRefused({"Copy", "in", "hard"}, "output hard and input in are one file: bench_work/in");
  fs::create_symlink("in", "bench_work/soft");
  ExpectRefused({"Copy", "in", "soft"}, "output soft and input in are one file: bench_work/in");
}

TEST_F(OneFileTest, RefusesAReportThatIsAnotherFile) {
  ExpectRefused({"Copy", "in", "out", "--json", "bench_work/in"},
                "the report and input in are one file: bench_work/in");
  ExpectRefused({"Copy", "in", "out", "--json", "bench_work/out"},
                "the report and output out are one file: bench_work/out");
  fs::create_directory("bench_work/logs");
  ExpectRefused({"Copy", "in", "out", "--json", "bench_work/logs/Copy.log"},
                "the report and the log are one file: bench_work/logs/Copy.log");
}

TEST_F(OneFileTest, RefusesCopiesAndLogsThatAreAnotherFile) {
  Put("out.wav", kSamples);
  ExpectRefused({"Copy", "out.wav", "out", "--wav"},
                "the copy of output out and input out.wav are one file: bench_work/out.wav");
  EXPECT_EQ(Run({"Copy", "out.wav", "out"}).exitCode, 0);
  fs::copy_file("bench_work/in", "bench_work/logs/Copy.log", fs::copy_options::overwrite_existing);
  ExpectRefused({"Copy", "logs/Copy.log", "out"},
                "the log and input logs/Copy.log are one file: bench_work/logs/Copy.log");
}

TEST_F(OneFileTest, ReadsOneFileTwice) { EXPECT_EQ(Run({"ReadBoth", "in", "in"}).exitCode, 0); }

TEST_F(OneFileTest, ReadsThroughLinksButWritesOnlyInTheWorkspace) {
  WriteFile("recording", kSamples);
  fs::create_symlink("../recording", "bench_work/linked");
  EXPECT_EQ(Run({"Copy", "linked", "out"}).exitCode, 0);
  EXPECT_EQ(ReadFile("bench_work/out"), kSamples);

  const std::string outside = " leads out of the workspace by a symbolic link";
  ExpectRefused({"Copy", "in", "linked"}, "output linked (bench_work/linked)" + outside);
  fs::create_directory("elsewhere");
  fs::create_symlink(fs::absolute("elsewhere"), "bench_work/folder");
  ExpectRefused({"Copy", "in", "folder/x"}, "output folder/x (bench_work/folder/x)" + outside);
  fs::remove_all("bench_work/logs");
  fs::create_symlink("../elsewhere", "bench_work/logs");
  ExpectRefused({"Copy", "in", "out"}, "cannot write bench_work/logs/Copy.log:" + outside);
  EXPECT_TRUE(fs::is_empty("elsewhere"));
}

TEST_F(OneFileTest, FailsWhereAnArgumentLeadsOutOfTheWorkspace) {
  const Finished run = Run({"WriteTo", "../outside"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("fail  WriteTo  output ../outside leads out of the workspace  "));
  EXPECT_FALSE(fs::exists("outside"));
}

TEST_F(OneFileTest, RefusesToOpenAnUndeclaredFileThroughALinkThatLeadsOut) {
  WriteFile("victim", "precious");
  fs::create_symlink("../victim", "bench_work/link");
  fs::create_symlink(fs::absolute("."), "bench_work/folder");
  for (const char* mode : {"wb", "ab", "r+b"}) {
    const Finished run = Run({"OpenAs", mode, "link"});
    EXPECT_THAT(run.out, StartsWith("Permission denied\n")) << mode;
    EXPECT_EQ(run.err, "not opened, because it leads out of the workspace: link\n");
  }
  EXPECT_THAT(Run({"OpenAs", "wb", "folder/new/file"}).out, StartsWith("Permission denied\n"));
  EXPECT_THAT(Run({"OpenAs", "rb", "link"}).out, StartsWith("opened\n"));
  EXPECT_EQ(ReadFile("victim"), "precious");
  EXPECT_FALSE(fs::exists("new"));
}

TEST_F(OneFileTest, WritesToNoFileThatHasAnotherName) {
  WriteFile("victim", "precious");
  fs::create_hard_link("victim", "bench_work/out");
  ExpectRefused({"Copy", "in", "out"}, "output out (bench_work/out) has another name, a hard link");
  ExpectRefused({"WriteTo", "out"}, "output out (bench_work/out) has another name, a hard link");
  for (const char* mode : {"wb", "ab", "r+b", "w+b", "a+b"}) {
    const Finished run = Run({"OpenAs", mode, "out"});
    EXPECT_THAT(run.out, StartsWith("Permission denied\n")) << mode;
    EXPECT_EQ(run.err, "not opened, because it has another name, a hard link: out\n");
  }
  EXPECT_THAT(Run({"OpenAs", "rb", "out"}).out, StartsWith("opened\n"));
  fs::remove("bench_work/logs/Copy.log");
  fs::create_hard_link("victim", "bench_work/logs/Copy.log");
  ExpectRefused({"Copy", "in", "new"},
                "cannot write bench_work/logs/Copy.log: has another name, a hard link");
  EXPECT_EQ(ReadFile("victim"), "precious");
}

TEST_F(OneFileTest, LeavesTheOtherNamesOfReportsAndCopies) {
  WriteFile("report.json", "");
  fs::create_hard_link("report.json", "report");
  Put("out.wav", "precious");
  fs::create_hard_link("bench_work/out.wav", "copy");
  EXPECT_EQ(Run({"Copy", "in", "out", "--wav", "--json", "report.json"}).exitCode, 0);
  EXPECT_EQ(ReadFile("report"), "");
  EXPECT_EQ(ReadFile("copy"), "precious");
  EXPECT_GT(fs::file_size("report.json"), 100U);
  EXPECT_EQ(fs::file_size("bench_work/out.wav"), 44 + kSamples.size());
}

TEST_F(OneFileTest, LeavesNoCopyOfAnEarlierRun) {
  const fs::path copy = "bench_work/out.pcm.wav";
  for (const char* routine : {"WriteEmpty", "WriteNothing", "ExitEarly"}) {
    EXPECT_EQ(Run({"WritePcm", "--wav"}).exitCode, 0);
    EXPECT_TRUE(fs::exists(copy));
    EXPECT_NE(Run({routine}).exitCode, 0);
    EXPECT_TRUE(fs::exists(copy)) << "copies were not asked for";
    EXPECT_NE(Run({routine, "--wav"}).exitCode, 0);
    EXPECT_EQ(fs::exists(copy), routine == std::string("ExitEarly")) << "which has no outputs";
  }
  fs::remove(copy);
  fs::create_directories(copy / "folder");
  EXPECT_EQ(Run({"WritePcm", "--wav"}).exitCode, 1) << "there can be no copy";
}

TEST_F(OneFileTest, TakesAWorkspaceThatIsALink) {
  fs::rename("bench_work", "moved");
  fs::create_directory_symlink("moved", "bench_work");
  EXPECT_EQ(Run({"Copy", "in", "out"}).exitCode, 0);
  EXPECT_EQ(ReadFile("moved/out"), kSamples);
}

TEST_F(OneFileTest, RunsOneAtATimeInAWorkspace) {
  Process first(Command({"Hang"}));
  AwaitHangingChild();
  const Finished second = Run({"Nothing"});
  EXPECT_EQ(second.exitCode, 2);
  EXPECT_THAT(second.err, StartsWith("audio_bench: the workspace bench_work is in use by process " +
                                     std::to_string(first.pid()) + " ("));
  EXPECT_THAT(second.err, HasSubstr("run Hang)"));
  EXPECT_EQ(Run({"Nothing", "--work", "other"}).exitCode, 0);

  Process third(Command({"Nothing", "--wait"}));
  usleep(200000);
  EXPECT_EQ(waitpid(third.pid(), nullptr, WNOHANG), 0) << "it waits";
  kill(first.pid(), SIGTERM);
  first.Wait();
  EXPECT_EQ(third.Wait().exitCode, 0);
}

TEST_F(OneFileTest, LeavesAWorkspaceFreeWhenItIsKilled) {
  Process first(Command({"Hang"}));
  AwaitHangingChild();
  kill(first.pid(), SIGKILL);
  first.Wait();
  EXPECT_EQ(Run({"Nothing", "--wait"}).exitCode, 0);
}

}  // namespace
