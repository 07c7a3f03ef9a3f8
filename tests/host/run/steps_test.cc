// The steps of a run, called with a case: no command line, no standard output.

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>

#include "process/signals.h"
#include "run/plan.h"
#include "run/run.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

class StepsTest : public testing::Test {
 protected:
  static RunReport RunInOrder(const Plan& plan) {
    const HostSignals signals;
    Limits limits(signals, plan.timeout);
    return RunPlan(plan, limits, nullptr);
  }

  TemporaryDirectory m_directory;
};

TEST_F(StepsTest, PlansWithoutTouchingAnything) {
  const Plan plan =
      MakePlan({.routine = "Copy", .arguments = {"/a.pcm", "/b.pcm"}, .work = "w", .timeout = 7});
  EXPECT_FALSE(plan.stop.has_value());
  EXPECT_EQ(plan.timeout, 7);
  ASSERT_EQ(plan.inputs.size(), 1u);
  EXPECT_EQ(plan.inputs[0].path, "w/a.pcm");
  ASSERT_EQ(plan.outputs.size(), 1u);
  EXPECT_EQ(plan.outputs[0].path, "w/b.pcm");
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST_F(StepsTest, PlansNoTimeLimitForADebugger) {
  const Plan plan = MakePlan({.routine = "RecordForEver", .arguments = {"2"}, .debug = true});
  EXPECT_FALSE(plan.stop.has_value());
  EXPECT_EQ(plan.timeout, std::numeric_limits<double>::infinity()) << "though it never returns";
}

TEST_F(StepsTest, StopsInThePlanWhatCannotBeRunAsAsked) {
  const Plan unknown = MakePlan({.routine = "NoSuchRoutine"});
  ASSERT_TRUE(unknown.stop && unknown.stop->refusal);
  const Plan unfit = MakePlan({.routine = "Copy", .arguments = {"one"}});
  ASSERT_TRUE(unfit.stop && unfit.stop->refusal);
  const Plan skipped = MakePlan({.routine = "Helper"});
  ASSERT_TRUE(skipped.stop && !skipped.stop->refusal);

  for (const auto& [plan, verdict] :
       {std::pair(unknown, Verdict::kError), std::pair(unfit, Verdict::kError),
        std::pair(skipped, Verdict::kSkip)}) {
    const RunReport report = RunInOrder(plan);
    EXPECT_EQ(report.judgement.verdict, verdict);
    EXPECT_EQ(report.judgement.reason, plan.stop->problem.text);
    EXPECT_FALSE(report.outcome.has_value());
  }
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST_F(StepsTest, RunManyCasesEachInAWorkspaceOfItsOwn) {
  for (const std::string work : {"first", "second"}) {
    std::filesystem::create_directory(work);
    WriteFile(work + "/a.pcm", std::string(1600, work[0]));
    const RunReport report =
        RunInOrder(MakePlan({.routine = "Copy", .arguments = {"a.pcm", "b.pcm"}, .work = work}));
    EXPECT_EQ(report.judgement.reason, "");
    EXPECT_EQ(report.judgement.verdict, Verdict::kPass);
    ASSERT_EQ(report.outputs.size(), 1u);
    EXPECT_EQ(report.outputs[0].bytes, 1600u);
    EXPECT_EQ(ReadFile(work + "/b.pcm"), std::string(1600, work[0]));
  }
}

TEST_F(StepsTest, RunsNothingWhereAnInputIsMissing) {
  const RunReport report =
      RunInOrder(MakePlan({.routine = "Copy", .arguments = {"a.pcm", "b.pcm"}, .work = "w"}));
  EXPECT_EQ(report.judgement.exitCode, 3);
  ASSERT_EQ(report.inputs.size(), 1u);
  ASSERT_EQ(report.inputs[0].problems.size(), 1u);
  EXPECT_EQ(report.inputs[0].problems[0].cause, Cause::kMissingInput);
  EXPECT_FALSE(report.outcome.has_value());
  EXPECT_FALSE(std::filesystem::exists("w"));
}

// A file where the workspace should be is only found on the way.
TEST_F(StepsTest, TellInTheReportWhatStopsARunOnTheWay) {
  WriteFile("w", "");
  const RunReport report =
      RunInOrder(MakePlan({.routine = "Echo", .arguments = {"a", "b", "true", "1"}, .work = "w"}));
  ASSERT_TRUE(report.stop && report.stop->refusal);
  EXPECT_EQ(report.judgement.exitCode, 2);
  EXPECT_THAT(report.judgement.reason, testing::StartsWith("cannot create the folder w"));
}

}  // namespace
}  // namespace host
