#include "run/judge.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <set>

#include "run/input_problem.h"
#include "run/wave_input.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

FilePlace Place(const std::string& name, int blockBytes = 0) {
  return {.use = {.blockBytes = blockBytes}, .name = name, .path = "work" + name};
}

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

// The report of a routine that returned and left one output.
RunReport WithOutput(Container container) {
  RunReport report;
  report.outcome.emplace();
  report.outputs.emplace_back();
  report.outputs[0].place = Place("/out");
  report.outputs[0].place.place = "out";
  report.outputs[0].place.use.container = container;
  return report;
}

Judgement JudgeRun(const RunReport& report) { return Judge(RunProblems(report, 1).All()); }

std::string Reason(const RunReport& report) { return JudgeRun(report).reason; }

TEST_F(JudgeTest, FailsOnOutputsThatTheRunDidNotWrite) {
  RunReport report = WithOutput(Container::kHeaderless);
  EXPECT_EQ(JudgeRun(report).verdict, Verdict::kPass);
  const std::pair<OutputState, const char*> cases[] = {
      {OutputState::kOutside, "leads out of the workspace"},
      {OutputState::kAbsent, "is absent"},
      {OutputState::kNotAFile, "is not a regular file"},
      {OutputState::kStale, "was not written; what is there is from before"},
      {OutputState::kEmpty, "is empty"}};
  for (const auto& [state, text] : cases) {
    report.outputs[0].state = state;
    const Judgement judgement = JudgeRun(report);
    EXPECT_EQ(judgement.verdict, Verdict::kFail);
    EXPECT_EQ(judgement.exitCode, 1);
    EXPECT_EQ(judgement.reason, std::string("output /out (work/out) ") + text);
  }
  report.outputs[0].place.use.mayBeEmpty = true;
  EXPECT_EQ(Reason(report), "");
}

TEST_F(JudgeTest, SaysWhyAnOutputCouldNotBeOpened) {
  RunReport report = WithOutput(Container::kHeaderless);
  report.outputs[0].state = OutputState::kAbsent;
  report.outcome->openFaults = {{ENOENT, "other"}, {EACCES, "out"}};
  EXPECT_EQ(Reason(report),
            "output /out (work/out) is absent, it could not be opened: Permission denied");
  report.outputs[0].state = OutputState::kStale;
  EXPECT_THAT(Reason(report), testing::EndsWith(", it could not be opened: Permission denied"));
}

TEST_F(JudgeTest, FailsOnWhatTheOutputsHold) {
  RunReport report = WithOutput(Container::kWave);
  FileReport& output = report.outputs[0];
  EXPECT_EQ(Reason(report), "output /out (work/out) is not a WAVE file");
  output.audio = AudioLayout{.samples = SampleType::kPcm16, .rate = 8000, .channels = 1};
  EXPECT_EQ(Reason(report), "output /out (work/out) holds no samples");
  output.place.use.mayBeEmpty = true;
  EXPECT_EQ(Reason(report), "");
  output.audio->bytes = 8;
  EXPECT_EQ(Reason(report), "");
  output.audio->flaw = "it ends early";
  EXPECT_EQ(Reason(report), "output /out (work/out) is not whole: it ends early");
  output.place.use.foreignHeader = true;
  EXPECT_EQ(Reason(report), "");

  output.channels = {{.samples = 4, .notFinite = 1}, {.samples = 4, .notFinite = 2}};
  EXPECT_EQ(Reason(report), "3 samples are not finite in output /out (work/out)");
  output.channels->clear();
  output.copy = WaveCopy{.path = "work/out.wav", .problem = "disk full"};
  EXPECT_EQ(Reason(report), "no copy work/out.wav: disk full");
}

TEST_F(JudgeTest, FailsOnOutputsThatCouldNotBeLookedAt) {
  RunReport report = WithOutput(Container::kHeaderless);
  FileReport& output = report.outputs[0];
  output.unmeasured = "it has become shorter";
  EXPECT_EQ(Reason(report), "output /out (work/out) could not be measured: it has become shorter");
  report.lookEnded = Problem{Cause::kTimeout, "late"};
  output.givenUp = true;
  EXPECT_EQ(Reason(report), "late") << "the time is to blame, not the output";
  EXPECT_EQ(JudgeRun(report).exitCode, 4);
  report.lookEnded.reset();
  output.unreadable = "Too many open files";
  EXPECT_EQ(Reason(report), "output /out (work/out) cannot be read back: Too many open files");
  output.changed = true;
  EXPECT_EQ(Reason(report), "output /out (work/out) changed while it was measured");
}

TEST_F(JudgeTest, CallsInputsThatChangedOrFailedAnError) {
  RunReport report = WithOutput(Container::kOther);
  report.inputs.emplace_back();
  FileReport& input = report.inputs[0];
  input.place = Place("/in");
  input.place.place = "in";
  EXPECT_EQ(Reason(report), "");
  input.unreadable = "Input/output error";
  EXPECT_EQ(Reason(report), "input /in (work/in) could not be read: Input/output error");
  EXPECT_EQ(JudgeRun(report).exitCode, 3);
  report.outcome->openFaults = {{EMFILE, "in"}};
  EXPECT_EQ(Reason(report), "input /in (work/in) could not be opened: Too many open files");
  input.changed = true;
  EXPECT_EQ(Reason(report), "input /in (work/in) changed during the run");
  EXPECT_EQ(JudgeRun(report).exitCode, 3);
}

TEST_F(JudgeTest, ToldOnceThatAnInputCouldNotBeReadWhateverElseIsWrongWithIt) {
  RunReport report = WithOutput(Container::kOther);
  report.inputs.emplace_back();
  report.inputs[0].place = Place("/in");
  report.inputs[0].place.place = "in";
  report.outcome->openFaults = {{EACCES, "in"}};
  report.inputs[0].problems = {{Cause::kInputNotWhole, "cut"}};
  EXPECT_EQ(JudgeRun(report).problems.size(), 2u);
  report.inputs[0].problems.push_back({Cause::kUnreadableInput, "no rights"});
  EXPECT_EQ(Reason(report), "no rights, and 1 more problem");
}

TEST_F(JudgeTest, LeavesTheReportAsItIsUntilTheJudgementIsFilledIn) {
  RunReport report = WithOutput(Container::kWave);
  EXPECT_EQ(RunProblems(report, 1).outputs[0].size(), 1u);
  EXPECT_TRUE(report.outputs[0].problems.empty());
  EXPECT_EQ(RunProblems(report, 1).All().size(), 1u) << "judged twice, told once";
  EXPECT_EQ(Judged(report).outputs[0].problems.size(), 1u);
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
    AddFormatWarnings(inputs);
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
