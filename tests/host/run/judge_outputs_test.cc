// What the outputs of a run that ended by itself are judged to be, and its inputs after it.

#include <gmock/gmock.h>

#include <cerrno>

#include "file_place.h"
#include "run/judge.h"

namespace host {
namespace {

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

TEST(JudgeOutputs, FailsOnOutputsThatTheRunDidNotWrite) {
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

TEST(JudgeOutputs, SaysWhyAnOutputCouldNotBeOpened) {
  RunReport report = WithOutput(Container::kHeaderless);
  report.outputs[0].state = OutputState::kAbsent;
  report.outcome->openFaults = {{ENOENT, "other"}, {EACCES, "out"}};
  EXPECT_EQ(Reason(report),
            "output /out (work/out) is absent, it could not be opened: Permission denied");
  report.outputs[0].state = OutputState::kStale;
  EXPECT_THAT(Reason(report), testing::EndsWith(", it could not be opened: Permission denied"));
}

TEST(JudgeOutputs, FailsOnWhatTheOutputsHold) {
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

TEST(JudgeOutputs, FailsOnOutputsThatCouldNotBeLookedAt) {
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

TEST(JudgeOutputs, CallsInputsThatChangedOrFailedAnError) {
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

TEST(JudgeOutputs, ToldOnceThatAnInputCouldNotBeReadWhateverElseIsWrongWithIt) {
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

TEST(JudgeOutputs, LeavesTheReportAsItIsUntilTheJudgementIsFilledIn) {
  RunReport report = WithOutput(Container::kWave);
  EXPECT_EQ(RunProblems(report, 1).outputs[0].size(), 1u);
  EXPECT_TRUE(report.outputs[0].problems.empty());
  EXPECT_EQ(RunProblems(report, 1).All().size(), 1u) << "judged twice, told once";
  EXPECT_EQ(Judged(report).outputs[0].problems.size(), 1u);
}

}  // namespace
}  // namespace host
