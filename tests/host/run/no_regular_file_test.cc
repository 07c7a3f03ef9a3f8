// What is no regular file, or becomes something else during a run, holds nobody up.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "run/run_fixture.h"

namespace {

using testing::HasSubstr;

// The host would wait for the other end of the FIFO for ever, deaf to signals.
TEST_F(RunTest, AnInputThatBecomesAFifoIsChanged) {
  Put("in", "12");
  const Finished run = RunProcess(
      {"/bin/sh", "-c", "exec timeout -s KILL 60 '" AUDIO_BENCH_PROBE "' run Spoil fifo in"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("input in (bench_work/in) changed during the run"));
}

TEST_F(RunTest, ACopyDoesNotGoIntoAFifo) {
  std::filesystem::create_directory("bench_work");
  ASSERT_EQ(mkfifo("bench_work/out.pcm.wav", 0600), 0);
  const int reader = open("bench_work/out.pcm.wav", O_RDWR | O_CLOEXEC);
  const Finished run = Run({"WritePcm", "--wav"});
  close(reader);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("no copy bench_work/out.pcm.wav: Not a regular file"));
}

TEST_F(RunTest, TheLogDoesNotGoIntoAFifo) {
  std::filesystem::create_directories("bench_work/logs");
  ASSERT_EQ(mkfifo("bench_work/logs/Nothing.log", 0600), 0);
  const int reader = open("bench_work/logs/Nothing.log", O_RDWR | O_CLOEXEC);
  const Finished run = Run({"Nothing"});
  close(reader);
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("cannot write bench_work/logs/Nothing.log: Not a regular file"));
}

// An engine looks at a file before it opens it, under the name that it opens.
TEST_F(RunTest, ALookAtAFileIsMappedAsItsOpeningIs) {
  Put("sdcard/here", "x");
  ASSERT_EQ(mkfifo("bench_work/C", 0600), 0);
  for (const auto& [name, what] : {std::pair("/sdcard/here", "a file"), std::pair("C:", "a FIFO"),
                                   std::pair("/dev/null", "No such file or directory"),
                                   std::pair("/sdcard/../../x", "Permission denied")}) {
    EXPECT_EQ(Run({"StatOf", name}).exitCode, 0);
    EXPECT_THAT(Run({"StatOf", name}).out, HasSubstr(std::string(name) + ": " + what + "\n"));
  }
}

}  // namespace
