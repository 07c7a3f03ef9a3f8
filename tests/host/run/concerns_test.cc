#include "run/concerns.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace host {
namespace {

using End = ChildOutcome::End;

// A run of one input and one output, and what is wrong with them before the concerns are judged.
class ConcernsTest : public testing::Test {
 protected:
  ConcernsTest() {
    m_report.outcome.emplace();
    m_report.inputs.resize(1);
    m_report.outputs.resize(1);
    m_report.outputs[0].audio.emplace();
    m_report.outputs[0].audio->bytes = 4;
    m_problems.inputs.resize(1);
    m_problems.outputs.resize(1);
  }

  FileReport& Input() { return m_report.inputs[0]; }
  FileReport& Output() { return m_report.outputs[0]; }
  // What has become of a concern of this kind: the causes of the problems of the input.
  std::vector<Cause> Causes(Concern::Kind kind) {
    Input().concerns = {{kind, "the input is stereo"}};
    Problems problems = m_problems;
    JudgeConcerns(m_report, problems);
    std::vector<Cause> causes;
    for (const Problem& problem : problems.inputs[0]) {
      EXPECT_EQ(problem.text, "the input is stereo");
      causes.push_back(problem.cause);
    }
    return causes;
  }

  RunReport m_report;
  Problems m_problems;
};

TEST_F(ConcernsTest, ACrashIsToldWithTheInputThatIsItsReason) {
  Input().concerns = {{Concern::Kind::kAborts, "the input is stereo"}};
  m_problems.run = {{Cause::kTimeout, "late"}, {Cause::kCrash, "killed"}};
  JudgeConcerns(m_report, m_problems);
  EXPECT_EQ(m_problems.run[0].text, "late");
  EXPECT_EQ(m_problems.run[1].text, "killed; the input is stereo");
  EXPECT_TRUE(m_problems.inputs[0].empty());
}

TEST_F(ConcernsTest, ARoutineThatDidNotCrashHasTakenItsInputAsItIs) {
  m_problems.run = {{Cause::kTimeout, "late"}};
  EXPECT_EQ(Causes(Concern::Kind::kAborts), std::vector{Cause::kInputAsItIs});
}

TEST_F(ConcernsTest, ACrashOverAnEmptyInputIsAProblemOfTheInput) {
  Input().place.use.otherFormat = OtherFormat::kAborts;
  Input().bytes = 0;
  m_problems.run = {{Cause::kLogIncomplete, "log"}, {Cause::kCrash, "killed"}};
  m_problems.inputs[0] = {{Cause::kInputTooShort, "the input is empty"}};
  const Problems before = m_problems;
  JudgeConcerns(m_report, m_problems);
  ASSERT_EQ(m_problems.run.size(), 1U);
  EXPECT_EQ(m_problems.run[0].text, "log");
  EXPECT_EQ(m_problems.inputs[0][0].text, "the input is empty; the routine was killed");

  const auto crashes = [&] {
    m_problems = before;
    JudgeConcerns(m_report, m_problems);
    return m_problems.run.size() == 2 && m_problems.inputs[0][0].text == "the input is empty";
  };
  Input().bytes = 44;
  EXPECT_TRUE(crashes()) << "over an input with bytes";
  Input().bytes = 0;
  Input().place.use.otherFormat = OtherFormat::kNoOutput;
  EXPECT_TRUE(crashes()) << "of a routine that does not end for such an input";
}

TEST_F(ConcernsTest, AnInputIsToBlameForOutputsWithoutContent) {
  const auto kind = Concern::Kind::kNoOutput;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputAsItIs}) << "an output with content";
  Output().audio->bytes = 0;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputFormat});
  for (const End end : {End::kCrashed, End::kTimedOut, End::kInterrupted}) {
    m_report.outcome->end = end;
    EXPECT_EQ(Causes(kind), std::vector{Cause::kInputAsItIs}) << "did not come to its end";
  }
  m_report.outcome->end = End::kStopped;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputFormat});
  Output().place.use.mayBeEmpty = true;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputAsItIs}) << "an output that may be empty";
  Output().place.use.mayBeEmpty = false;
  Output().audio.reset();
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputAsItIs}) << "content that is no audio";
  Output().state = OutputState::kAbsent;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputFormat});
}

TEST_F(ConcernsTest, AnInputIsToBlameForAHeaderThatIsNone) {
  const auto kind = Concern::Kind::kHeader;
  Output().place.use.foreignHeader = true;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputAsItIs}) << "a WAVE";
  Output().audio.reset();
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputFormat});
  m_report.outcome->end = End::kCrashed;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputAsItIs}) << "did not come to its end";
  m_report.outcome->end = End::kReturned;
  Output().place.use.foreignHeader = false;
  EXPECT_EQ(Causes(kind), std::vector{Cause::kInputAsItIs}) << "a header of the routine's own";
}

TEST_F(ConcernsTest, AnOutputIsNotBlamedForTheHeaderOfItsInput) {
  Input().concerns = {{Concern::Kind::kHeader, "the input has a long header"}};
  Output().place.use.foreignHeader = true;
  Output().audio.reset();
  m_problems.outputs[0] = {{Cause::kOutputFormat, "no WAVE"}, {Cause::kOutputNotWhole, "full"}};
  JudgeConcerns(m_report, m_problems);
  ASSERT_EQ(m_problems.outputs[0].size(), 1U);
  EXPECT_EQ(m_problems.outputs[0][0].cause, Cause::kOutputNotWhole);
}

}  // namespace
}  // namespace host
