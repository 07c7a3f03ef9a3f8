#include "run/judge.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <set>

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
  EXPECT_EQ(Judge(InputProblems(inputs)).verdict, Verdict::kPass);
  EXPECT_EQ(Judge(InputProblems({})).verdict, Verdict::kPass);
}

TEST_F(JudgeTest, FailsOnAnInputWithoutOneBlock) {
  WriteFile("work/a", "123");
  const std::vector<FilePlace> inputs = {Place("/a", 4)};
  const Judgement judgement = Judge(InputProblems(inputs));
  EXPECT_EQ(judgement.verdict, Verdict::kFail);
  EXPECT_EQ(judgement.exitCode, 1);
  EXPECT_EQ(judgement.reason, "input /a (work/a) holds no whole block of 4 bytes: 3 bytes");
}

TEST_F(JudgeTest, CallsMissingInputsAnErrorAndCountsThem) {
  WriteFile("work/short", "");
  const std::vector<FilePlace> inputs = {Place("/short", 4), Place("/a"), Place("/b"), Place("/c")};
  const Judgement judgement = Judge(InputProblems(inputs));
  EXPECT_EQ(judgement.verdict, Verdict::kError);
  EXPECT_EQ(judgement.exitCode, 3);
  EXPECT_EQ(judgement.reason, "input /a (work/a): No such file or directory, and 3 more problems");
}

TEST_F(JudgeTest, CallsFoldersAndStrangeNamesUnreadable) {
  std::filesystem::create_directory("work/folder");
  std::vector<FilePlace> inputs = {Place("/folder")};
  EXPECT_EQ(Judge(InputProblems(inputs)).reason, "input /folder (work/folder): Is a directory");
  inputs = {{.use = {}, .name = "../x", .path = ""}};
  EXPECT_EQ(Judge(InputProblems(inputs)).reason, "input ../x: leads out of the workspace");
}

TEST_F(JudgeTest, DoesNotWaitForAPipe) {
  ASSERT_EQ(mkfifo("fifo", 0600), 0);
  const std::vector<FilePlace> inputs = {{.use = {}, .name = "fifo", .path = "fifo"}};
  EXPECT_EQ(Judge(InputProblems(inputs)).reason, "input fifo (fifo): Not a regular file");
}

TEST_F(JudgeTest, TellsHowARunEnded) {
  using End = ChildOutcome::End;
  EXPECT_EQ(Judge(OutcomeProblems({}, 1)).verdict, Verdict::kPass);
  const Judgement crash = Judge(OutcomeProblems({.end = End::kCrashed, .how = "killed"}, 1));
  EXPECT_EQ(crash.verdict, Verdict::kError);
  EXPECT_EQ(crash.exitCode, 4);
  EXPECT_EQ(crash.reason, "killed");
  const Judgement timeout = Judge(OutcomeProblems({.end = End::kTimedOut, .how = {}}, 1.5));
  EXPECT_EQ(timeout.exitCode, 4);
  EXPECT_EQ(timeout.reason, "timed out after 1.50 s");
  const Judgement stopped =
      Judge(OutcomeProblems({.end = End::kInterrupted, .how = {}, .interruption = SIGINT}, 1));
  EXPECT_EQ(stopped.verdict, Verdict::kError);
  EXPECT_EQ(stopped.exitCode, 130);
  EXPECT_EQ(stopped.reason, "interrupted (Interrupt)");
}

TEST_F(JudgeTest, FailsWhenAFileIsNotWrittenWhole) {
  const Judgement judgement = Judge(OutcomeProblems({.how = {}, .writeFailure = ENOSPC}, 1));
  EXPECT_EQ(judgement.verdict, Verdict::kFail);
  EXPECT_EQ(judgement.reason, "a file could not be written whole: No space left on device");
}

FileReport Output(Container container) {
  FileReport report;
  report.place = Place("/out");
  report.place.use.container = container;
  return report;
}

TEST_F(JudgeTest, FailsOnOutputsThatTheRunDidNotWrite) {
  std::vector<FileReport> outputs = {Output(Container::kHeaderless),
                                     Output(Container::kHeaderless)};
  EXPECT_EQ(Judge(OutputProblems(outputs)).verdict, Verdict::kPass);
  EXPECT_EQ(Judge(OutputProblems({})).verdict, Verdict::kPass);
  const std::pair<OutputState, const char*> cases[] = {
      {OutputState::kOutside, "leads out of the workspace"},
      {OutputState::kAbsent, "is absent"},
      {OutputState::kNotAFile, "is not a regular file"},
      {OutputState::kStale, "was not written; what is there is from before"},
      {OutputState::kEmpty, "is empty"}};
  for (const auto& [state, text] : cases) {
    outputs[1].state = state;
    const Judgement judgement = Judge(OutputProblems(outputs));
    EXPECT_EQ(judgement.verdict, Verdict::kFail);
    EXPECT_EQ(judgement.exitCode, 1);
    EXPECT_EQ(judgement.reason, std::string("output /out (work/out) ") + text);
  }
}

TEST_F(JudgeTest, FailsOnWhatTheOutputsHold) {
  std::vector<FileReport> outputs = {Output(Container::kWave)};
  const auto reason = [&] { return Judge(OutputProblems(outputs)).reason; };
  EXPECT_EQ(reason(), "output /out (work/out) is not a WAVE file");
  outputs[0].audio = AudioLayout{.samples = SampleType::kPcm16, .rate = 8000, .channels = 1};
  EXPECT_EQ(reason(), "output /out (work/out) holds no samples");
  outputs[0].audio->bytes = 8;
  EXPECT_EQ(reason(), "");

  outputs[0].channels = {{.samples = 4, .notFinite = 1}, {.samples = 4, .notFinite = 2}};
  EXPECT_EQ(reason(), "3 samples are not finite in output /out (work/out)");
  outputs[0].channels->clear();
  outputs[0].copy = WaveCopy{.path = "work/out.wav", .problem = "disk full"};
  EXPECT_EQ(reason(), "no copy work/out.wav: disk full");
}

TEST(Judge, NamesTheWorstProblemAndKeepsAll) {
  const Judgement judgement = Judge({{Cause::kOutputAbsent, "absent"},
                                     {Cause::kTimeout, "late"},
                                     {Cause::kMissingInput, "missing"},
                                     {Cause::kTimeout, "later"}});
  EXPECT_EQ(judgement.verdict, Verdict::kError);
  EXPECT_EQ(judgement.exitCode, 4);
  EXPECT_EQ(judgement.reason, "late, and 3 more problems");
  EXPECT_EQ(judgement.Worst()->text, "late");
  EXPECT_EQ(judgement.problems.size(), 4U);
  EXPECT_EQ(Judge({{Cause::kLogIncomplete, "log"}}).exitCode, 2);
  EXPECT_EQ(Judge({{Cause::kLogIncomplete, "log"}, {Cause::kCopyFailed, "copy"}}).exitCode, 1);
  EXPECT_EQ(Judge({{Cause::kInterrupted, "INT", SIGINT}}).exitCode, 130);
  EXPECT_EQ(Judge({}).Worst(), nullptr);
}

TEST(CauseName, DiffersForEachCause) {
  std::set<std::string> names;
  for (int i = 0; i <= static_cast<int>(Cause::kInterrupted); ++i) {
    names.insert(CauseName(static_cast<Cause>(i)));
  }
  EXPECT_EQ(names.size(), static_cast<size_t>(Cause::kInterrupted) + 1);
  EXPECT_STREQ(CauseName(Cause::kNotRunnable), "not_runnable");
  EXPECT_STREQ(CauseName(Cause::kMissingInput), "missing_input");
  EXPECT_STREQ(CauseName(Cause::kInterrupted), "interrupted");
}

}  // namespace
}  // namespace host
