#include "run/judge.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <set>

#include "file_place.h"
#include "run/input_problem.h"
#include "run/wave_input.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

// What is wrong with these inputs before a run.
std::vector<Problem> InputProblems(const std::vector<FilePlace>& inputs) {
  std::vector<Problem> problems;
  for (const FilePlace& input : inputs) {
    if (const auto problem = InputProblem(input)) problems.push_back(*problem);
  }
  return problems;
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
  EXPECT_EQ(judgement.reason,
            "input /a (work/a): No such file or directory; put a file of yours "
            "there, and 3 more problems");
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
  ChildOutcome outcome;
  outcome.writeFault = {ENOSPC, "out.pcm"};
  const Judgement judgement = Judge(OutcomeProblems(outcome, 1));
  EXPECT_EQ(judgement.verdict, Verdict::kFail);
  EXPECT_EQ(judgement.reason, "out.pcm could not be written whole: No space left on device");
}

TEST_F(JudgeTest, CallsAReadErrorAnErrorOfTheInput) {
  ChildOutcome outcome;
  outcome.readFault = {EIO, "in.pcm"};
  const Judgement judgement = Judge(OutcomeProblems(outcome, 1));
  EXPECT_EQ(judgement.verdict, Verdict::kError);
  EXPECT_EQ(judgement.exitCode, 3);
  EXPECT_EQ(judgement.reason, "in.pcm could not be read: Input/output error");
}

TEST_F(JudgeTest, EndsWithTwoWhenTheLogIsIncomplete) {
  ChildOutcome outcome;
  outcome.logFault = ENOSPC;
  const Judgement judgement = Judge(OutcomeProblems(outcome, 1));
  EXPECT_EQ(judgement.exitCode, 2);
  EXPECT_EQ(judgement.reason, "the log file is not complete: No space left on device");
}

TEST_F(JudgeTest, EndsWithTwoWhenWhatWasPrintedIsNotTaken) {
  ChildOutcome outcome;
  outcome.delivered = false;
  const Judgement judgement = Judge(OutcomeProblems(outcome, 1));
  EXPECT_EQ(judgement.exitCode, 2);
  EXPECT_EQ(judgement.reason, "what the routine printed could not be written to standard output");
}

TEST_F(JudgeTest, SaysHowToConvertAFileThatIsNotHeaderless) {
  WriteFile("work/my song", "RIFF1234WAVE" + std::string(200, 'x'));
  FilePlace input = Place("/my song", 4);
  input.use.container = Container::kHeaderless;
  input.use.rate = 44100;
  input.use.channels = 2;
  const Judgement judgement = Judge(InputProblems(std::vector{input}));
  EXPECT_EQ(judgement.verdict, Verdict::kFail);
  EXPECT_EQ(judgement.exitCode, 1);
  EXPECT_EQ(judgement.reason,
            "input /my song (work/my song) is a WAVE file, not headerless samples; to convert it: "
            "ffmpeg -i 'work/my song' -f s16le -ar 44100 -ac 2 'work/my song.raw' && mv "
            "'work/my song.raw' 'work/my song'");
}

TEST_F(JudgeTest, TakesARecordingOfAnyKind) {
  FilePlace input = Place("/in");
  input.use.container = Container::kRecording;
  WriteFile("work/in", "fLaC" + std::string(200, 'x'));
  EXPECT_EQ(Judge(InputProblems({input})).verdict, Verdict::kPass);
}

TEST_F(JudgeTest, SaysThatAFileIsNoWave) {
  FilePlace input = Place("/in");
  input.use.container = Container::kWave;
  WriteFile("work/in", "fLaC" + std::string(200, 'x'));
  const Judgement judgement = Judge(InputProblems({input}));
  EXPECT_EQ(judgement.exitCode, 1);
  EXPECT_EQ(judgement.reason,
            "input /in (work/in) is no WAVE file that can be read; to convert it: ffmpeg -i "
            "work/in -c:a pcm_s16le -map_metadata -1 -bitexact work/in.16.wav && mv "
            "work/in.16.wav work/in");
  input.use.optional = true;
  EXPECT_EQ(Judge(InputProblems({input})).exitCode, 1) << "there, and of another kind";
  WriteFile("work/in", "");
  EXPECT_EQ(Judge(InputProblems({input})).verdict, Verdict::kPass);
  input.use.optional = false;
  EXPECT_EQ(Judge(InputProblems({input})).reason, "input /in (work/in) holds no samples: 0 bytes");
}

TEST_F(JudgeTest, WarnsOfSamplesThatAreTakenForOthers) {
  WriteFile("work/in", WavBytes({.rate = 16000}, {1, 2, 3}));
  const auto judge = [](int rate, int channels) {
    std::vector<FileReport> inputs(1);
    inputs[0].place = Place("/in");
    inputs[0].place.use.container = Container::kWave;
    inputs[0].place.use.rate = rate;
    inputs[0].place.use.channels = channels;
    AddFormatProblems(inputs);
    return Judge(inputs[0].problems);
  };
  EXPECT_EQ(judge(0, 0).verdict, Verdict::kPass) << "any format";
  EXPECT_EQ(judge(16000, 1).verdict, Verdict::kPass);
  EXPECT_EQ(judge(0, 1).verdict, Verdict::kPass);
  EXPECT_EQ(judge(16000, 2).verdict, Verdict::kWarn);
  EXPECT_EQ(judge(44100, 1).verdict, Verdict::kWarn);
  EXPECT_EQ(judge(44100, 2).reason,
            "input /in (work/in) is 16000 Hz, mono, where 44100 Hz, stereo is counted on; it is "
            "taken as it is; to convert it: ffmpeg -i work/in -c:a pcm_s16le -map_metadata -1 "
            "-bitexact -ar 44100 -ac 2 work/in.16.wav && mv work/in.16.wav work/in");
}

TEST_F(JudgeTest, RefusesSamplesOfWhichNothingOfUseWouldCome) {
  WriteFile("work/in", WavBytes({.rate = 16000}, {1, 2, 3}));
  const auto problems = [](const FileUse& use, const Engine& engine) {
    std::vector<FileReport> inputs(1);
    inputs[0].place = Place("/in");
    inputs[0].place.use = use;
    AddFormatProblems(inputs, engine);
    return inputs[0].problems;
  };
  Engine other = {EngineLibrary{}};
  other.library->facilities = {"codec/audio_codec", "codec/codec_format"};
  FileUse use = {.container = Container::kWave, .rate = 16000, .channels = 1, .onlyRight = true};
  EXPECT_TRUE(problems(use, {}).empty());
  use.channels = 2;
  const std::vector<Problem> refused = problems(use, {});
  EXPECT_EQ(Judge(refused).Worst()->cause, Cause::kInputFormat);
  EXPECT_EQ(Judge(refused).reason.substr(0, 75),
            "input /in (work/in) is 16000 Hz, mono, where only 16000 Hz, stereo is taken");
  EXPECT_EQ(Judge(problems(use, other)).exitCode, 1) << "it is the routine that takes no other";
  use.formatBy = "codec/codec_format";
  EXPECT_EQ(Judge(problems(use, {})).exitCode, 1);
  EXPECT_EQ(Judge(problems(use, other)).verdict, Verdict::kWarn)
      << "the codecs of another engine may have other formats";
}

TEST_F(JudgeTest, WarnsOfSamplesThatAPartOfTheRoutineTakesForOthers) {
  WriteFile("work/in", WavBytes({.rate = 44100}, {1, 2, 3}));
  std::vector<FileReport> inputs(1);
  inputs[0].place = Place("/in");
  inputs[0].place.use = {.container = Container::kWave,
                         .rate = 44100,
                         .channels = 1,
                         .onlyRight = true,
                         .alsoTakenFor = {16000, 1}};
  AddFormatProblems(inputs);
  EXPECT_EQ(Judge(inputs[0].problems).reason,
            "input /in (work/in) is 44100 Hz, mono, which a part of the routine takes for 16000 "
            "Hz, mono");
  EXPECT_EQ(Judge(inputs[0].problems).verdict, Verdict::kWarn);
  inputs[0].problems.clear();
  inputs[0].place.use.alsoTakenFor = {44100, 1};
  AddFormatProblems(inputs);
  EXPECT_TRUE(inputs[0].problems.empty());
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

// An input with these problems, of this list.
FileReport Input(const std::string& pattern, const std::vector<Problem>& problems) {
  FileReport input;
  input.place.use.pattern = pattern;
  input.problems = problems;
  return input;
}

TEST(MayRun, NeedsEachInputThatIsOfNoList) {
  const FileReport fine = Input("", {});
  const FileReport missing = Input("", {{Cause::kMissingInput, "missing"}});
  EXPECT_TRUE(MayRun({}));
  EXPECT_TRUE(MayRun(std::vector{fine, Input("", {{Cause::kInputTooShort, "short"}})}));
  EXPECT_FALSE(MayRun(std::vector{fine, missing}));
  EXPECT_FALSE(MayRun(std::vector{missing, fine}));
}

TEST(MayRun, NeedsOneInputOfEachList) {
  const FileReport gone = Input("a/#", {{Cause::kMissingInput, "missing"}});
  EXPECT_TRUE(MayRun(std::vector{gone, Input("a/#", {})}));
  EXPECT_TRUE(MayRun(std::vector{Input("a/#", {}), gone}));
  EXPECT_FALSE(MayRun(std::vector{gone, gone}));
  EXPECT_FALSE(MayRun(std::vector{gone, Input("b/#", {})})) << "of another list";
  EXPECT_FALSE(MayRun(std::vector{gone, Input("", {})})) << "of none";
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
