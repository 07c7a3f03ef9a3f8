#include "run/judge.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

FilePlace Place(const std::string& name, int blockBytes = 0) {
  return {.use = {.blockBytes = blockBytes}, .name = name, .path = "work" + name};
}

class JudgeTest : public testing::Test {
 protected:
  JudgeTest() { std::filesystem::create_directory("work"); }

  TemporaryDirectory m_directory;
};

TEST_F(JudgeTest, PassesInputsThatHoldOneBlock) {
  WriteFile("work/a", "1234");
  WriteFile("work/empty", "");
  const std::vector<FilePlace> inputs = {Place("/a", 4), Place("/empty")};
  EXPECT_EQ(JudgeInputs(inputs).verdict, Verdict::kPass);
  EXPECT_EQ(JudgeInputs({}).verdict, Verdict::kPass);
}

TEST_F(JudgeTest, FailsOnAnInputWithoutOneBlock) {
  WriteFile("work/a", "123");
  const std::vector<FilePlace> inputs = {Place("/a", 4)};
  const Judgement judgement = JudgeInputs(inputs);
  EXPECT_EQ(judgement.verdict, Verdict::kFail);
  EXPECT_EQ(judgement.exitCode, 1);
  EXPECT_EQ(judgement.reason, "input /a (work/a) holds no whole block of 4 bytes: 3 bytes");
}

TEST_F(JudgeTest, CallsMissingInputsAnErrorAndCountsThem) {
  WriteFile("work/short", "");
  const std::vector<FilePlace> inputs = {Place("/short", 4), Place("/a"), Place("/b"), Place("/c")};
  const Judgement judgement = JudgeInputs(inputs);
  EXPECT_EQ(judgement.verdict, Verdict::kError);
  EXPECT_EQ(judgement.exitCode, 3);
  EXPECT_EQ(judgement.reason, "input /a (work/a): No such file or directory, and 2 more like it");
}

TEST_F(JudgeTest, CallsFoldersAndStrangeNamesUnreadable) {
  std::filesystem::create_directory("work/folder");
  std::vector<FilePlace> inputs = {Place("/folder")};
  EXPECT_EQ(JudgeInputs(inputs).reason, "input /folder (work/folder): Is a directory");
  inputs = {{.use = {}, .name = "../x", .path = ""}};
  EXPECT_EQ(JudgeInputs(inputs).reason, "input ../x: leads out of the workspace");
}

TEST_F(JudgeTest, DoesNotWaitForAPipe) {
  ASSERT_EQ(mkfifo("fifo", 0600), 0);
  const std::vector<FilePlace> inputs = {{.use = {}, .name = "fifo", .path = "fifo"}};
  EXPECT_EQ(JudgeInputs(inputs).reason, "input fifo (fifo): Not a regular file");
}

TEST_F(JudgeTest, TellsHowARunEnded) {
  using End = ChildOutcome::End;
  EXPECT_EQ(JudgeOutcome({}, 1).verdict, Verdict::kPass);
  const Judgement crash = JudgeOutcome({.end = End::kCrashed, .how = "killed"}, 1);
  EXPECT_EQ(crash.verdict, Verdict::kError);
  EXPECT_EQ(crash.exitCode, 4);
  EXPECT_EQ(crash.reason, "killed");
  const Judgement timeout = JudgeOutcome({.end = End::kTimedOut, .how = {}}, 1.5);
  EXPECT_EQ(timeout.exitCode, 4);
  EXPECT_EQ(timeout.reason, "timed out after 1.50 s");
  const Judgement stopped =
      JudgeOutcome({.end = End::kInterrupted, .how = {}, .interruption = SIGINT}, 1);
  EXPECT_EQ(stopped.verdict, Verdict::kError);
  EXPECT_EQ(stopped.exitCode, 130);
  EXPECT_EQ(stopped.reason, "interrupted (Interrupt)");
}

TEST_F(JudgeTest, FailsWhenAFileIsNotWrittenWhole) {
  const Judgement judgement = JudgeOutcome({.how = {}, .writeFailure = ENOSPC}, 1);
  EXPECT_EQ(judgement.verdict, Verdict::kFail);
  EXPECT_EQ(judgement.reason, "a file could not be written whole: No space left on device");
}

FileReport Output(Encoding encoding) {
  FileReport report;
  report.place = Place("/out");
  report.place.use.encoding = encoding;
  return report;
}

TEST_F(JudgeTest, FailsOnOutputsThatTheRunDidNotWrite) {
  const std::vector<FileReport> outputs = {Output(Encoding::kPcm16), Output(Encoding::kPcm16)};
  const std::vector<std::string> problems = {"", "is empty"};
  EXPECT_EQ(JudgeOutputs(outputs, problems).verdict, Verdict::kFail);
  EXPECT_EQ(JudgeOutputs(outputs, problems).reason, "output /out (work/out) is empty");
  EXPECT_EQ(JudgeOutputs(outputs, std::vector<std::string>(2)).verdict, Verdict::kPass);
  EXPECT_EQ(JudgeOutputs({}, {}).verdict, Verdict::kPass);
}

TEST_F(JudgeTest, FailsOnWhatTheOutputsHold) {
  const std::vector<std::string> fine(1);
  std::vector<FileReport> outputs = {Output(Encoding::kWave)};
  EXPECT_EQ(JudgeOutputs(outputs, fine).reason, "output /out (work/out) is not a WAVE file");
  outputs[0].audio = AudioLayout{.samples = Encoding::kPcm16, .rate = 8000, .channels = 1};
  EXPECT_EQ(JudgeOutputs(outputs, fine).reason, "output /out (work/out) holds no samples");
  outputs[0].audio->bytes = 8;
  EXPECT_EQ(JudgeOutputs(outputs, fine).verdict, Verdict::kPass);

  outputs[0].channels = {{.samples = 4, .notFinite = 1}, {.samples = 4, .notFinite = 2}};
  EXPECT_EQ(JudgeOutputs(outputs, fine).reason,
            "3 samples are not finite in output /out (work/out)");
  outputs[0].channels->clear();
  outputs[0].copy = WaveCopy{.path = "work/out.wav", .problem = "disk full"};
  EXPECT_EQ(JudgeOutputs(outputs, fine).reason, "no copy work/out.wav: disk full");
}

}  // namespace
}  // namespace host
