// Inputs and outputs that are not what they should be must not end in a pass.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <filesystem>

#include "run/run_fixture.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

TEST_F(RunTest, CallsAReadErrorAnErrorOfTheInput) {
  fs::create_directory("bench_work");
  fs::create_symlink("/proc/self/mem", "bench_work/in");  // A file whose first byte is EIO.
  for (const char* routine : {"ReadAll", "ReadAndLeaveOpen"}) {
    const Finished run = Run({routine, "in"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("in could not be read: Input/output error"));
  }
}

TEST_F(RunTest, CallsAnInputThatChangesAnError) {
  for (const char* how : {"grow", "shrink", "vanish", "replace", "overwrite"}) {
    Put("in", "some bytes");
    Put("in.new", "some bytes");
    const Finished run = Run({"Spoil", how, "in"});
    EXPECT_EQ(run.exitCode, 3) << how;
    EXPECT_THAT(run.out,
                StartsWith("error  Spoil  input in (bench_work/in) changed during the run"))
        << how;
  }
  Put("in", "some bytes");
  EXPECT_EQ(Run({"Spoil", "not at all", "in"}).exitCode, 0);
  EXPECT_EQ(Run({"Spoil", "forbid", "in"}).exitCode, 0) << "nobody has written to it";
}

TEST_F(RunTest, RefusesAnInputOfAnotherKindAndSaysHowToConvertIt) {
  Put("in", "RIFF\x24\x01\x01\x01WAVEfmt " + std::string(400, 'x'));
  const Finished run = Run({"Copy", "in", "out"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("is a WAVE file, not headerless samples; to convert it: ffmpeg -i "
                                 "bench_work/in -f s16le -ar 8000 -ac 1 bench_work/in.raw"));
  EXPECT_FALSE(fs::exists("bench_work/out"));
}

TEST_F(RunTest, RefusesATextOrAProgramAsSamples) {
  std::string list;
  for (int i = 0; i < 100; ++i) list += "recordings/number" + std::to_string(i) + ".wav\n";
  for (const auto& [bytes, kind] :
       {std::pair(list, "a text"), {ReadFile(AUDIO_BENCH_PROBE), "a program"}}) {
    Put("in", bytes);
    const Finished run = Run({"Copy", "in", "out"});
    EXPECT_EQ(run.exitCode, 1) << kind;
    EXPECT_THAT(run.out, HasSubstr(std::string("input in (bench_work/in) is ") + kind +
                                   ", not headerless samples; it takes 16-bit samples, 8000 Hz"));
    EXPECT_THAT(run.out, HasSubstr("ffmpeg -i YOUR_FILE -f s16le -ar 8000 -ac 1 bench_work/in"));
    EXPECT_FALSE(fs::exists("bench_work/out"));
  }
}

TEST_F(RunTest, FailsOnAnOutputThatIsNotWhole) {
  EXPECT_EQ(Run({"WriteBytes", "4"}).exitCode, 0);
  Finished run = Run({"WriteBytes", "5"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("is not whole: it ends with a part of a frame, 1 byte"));

  EXPECT_EQ(Run({"WriteWave", "8", "44"}).exitCode, 0);
  EXPECT_EQ(Run({"WriteWave", "10", "46"}).exitCode, 1);
  EXPECT_EQ(Run({"WriteWave", "8", "0"}).exitCode, 1);
  EXPECT_EQ(Run({"WriteWave", "0", "0"}).exitCode, 1);
  run = Run({"WriteWave", "6", "44"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("announces 6 bytes of samples, there are 8"));
}

TEST_F(RunTest, FailsOnAnOutputWhoseRightsChangedOnly) {
  Put("out", "older");
  Finished run = Run({"ChangeRights", "out"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("out (bench_work/out) was not written; what is there is from"));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(Run({"WriteTo", "out"}).exitCode, 0) << "the same bytes";
}

TEST_F(RunTest, FailsOnAnOutputThatChangesWhileItIsMeasured) {
  Process process(Command({"WriteHugeFloats", "300"}));
  while (ReadFile("bench_work/logs/WriteHugeFloats.log").empty()) usleep(1000);
  siginfo_t ended = {};
  while (waitid(P_PID, static_cast<id_t>(process.pid()), &ended, WEXITED | WNOHANG | WNOWAIT) ==
             0 &&
         ended.si_pid == 0) {
    utimensat(AT_FDCWD, "bench_work/sdcard/out.f32", nullptr, 0);
    usleep(2000);
  }
  const Finished run = process.Wait();
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("changed while it was measured"));
}

TEST_F(RunTest, SaysWhyAnOutputCouldNotBeOpened) {
  Put("folder", "a file where a folder should be");
  const Finished run = Run({"WriteTo", "folder/out"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("is absent, it could not be opened: Not a directory"));
}

TEST_F(RunTest, RefusesAnOutputThatIsNoFileBeforeItRuns) {
  fs::create_directory("bench_work");
  ASSERT_EQ(mkfifo("bench_work/out", 0600), 0);
  const Finished run = Run({"WriteTo", "out", "--timeout-s", "5"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err, "audio_bench: output out (bench_work/out) is not a regular file\n");
  EXPECT_FALSE(fs::exists("bench_work/logs"));
}

TEST_F(RunTest, CreatesNoWorkspaceForInputsThatAreMissing) {
  EXPECT_EQ(Run({"Copy", "in", "out", "--work", "mistyped"}).exitCode, 3);
  EXPECT_FALSE(fs::exists("mistyped"));
}

TEST_F(RunTest, EndsWithTwoWhenTheLogIsIncomplete) {
  const Finished run = RunAfter("ulimit -f 100", "LogMuch");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.out, HasSubstr("the log file is not complete: File too large"));
}

}  // namespace
