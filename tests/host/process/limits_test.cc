// The limits of a run, and what those that were reached are called. Times are either over or
// further ahead than any test takes.

#include "process/limits.h"

#include <gtest/gtest.h>

#include <csignal>

#include "run/stopped.h"

namespace host {
namespace {

constexpr double kFarAhead = 1e6;  // Seconds

class LimitsTest : public testing::Test {
 protected:
  HostSignals m_signals;
};

TEST_F(LimitsTest, LetARunGoOnWhileThereIsTime) {
  Limits limits(m_signals, kFarAhead);
  EXPECT_EQ(limits.Check(), Limits::Stop::kNone);
  EXPECT_GT(limits.Left(), kFarAhead / 2);
  EXPECT_LE(limits.Left(), kFarAhead);
  EXPECT_EQ(limits.interruption(), 0);
  EXPECT_NO_THROW(EndAtLimits(limits, kFarAhead, "reading"));
}

TEST_F(LimitsTest, EndARunWhoseTimeIsUp) {
  Limits limits(m_signals, -1);
  EXPECT_EQ(limits.Left(), 0);
  EXPECT_EQ(limits.Check(), Limits::Stop::kTimedOut);
  EXPECT_FALSE(limits.Interrupted());
  try {
    EndAtLimits(limits, 0.5, "reading its inputs");
    FAIL();
  } catch (const Ended& ended) {
    EXPECT_EQ(ended.problem.cause, Cause::kTimeout);
    EXPECT_EQ(ended.problem.text, "timed out after 0.50 s while reading its inputs");
  }
}

TEST_F(LimitsTest, GiveTimeAnew) {
  Limits limits(m_signals, -1);
  limits.Check();
  limits.Restart(kFarAhead);
  EXPECT_EQ(limits.Check(), Limits::Stop::kNone);
  limits.Restart(-1);
  EXPECT_EQ(limits.Check(), Limits::Stop::kTimedOut);
}

TEST_F(LimitsTest, EndARunThatIsInterrupted) {
  Limits limits(m_signals, kFarAhead);
  raise(SIGTERM);
  EXPECT_EQ(limits.Check(), Limits::Stop::kInterrupted);
  EXPECT_TRUE(limits.Interrupted());
  EXPECT_EQ(limits.interruption(), SIGTERM);
  raise(SIGINT);
  EXPECT_EQ(limits.Check(), Limits::Stop::kInterrupted);
  EXPECT_EQ(limits.interruption(), SIGTERM) << "the first one counts";
  limits.Restart(kFarAhead);
  EXPECT_EQ(limits.Check(), Limits::Stop::kInterrupted) << "time is no help";
  const Problem problem = Stopped(limits, 1, "measuring its files");
  EXPECT_EQ(problem.cause, Cause::kInterrupted);
  EXPECT_EQ(problem.text, "interrupted (Terminated) while measuring its files");
  EXPECT_EQ(problem.signal, SIGTERM);
}

TEST_F(LimitsTest, KeepATimeOutThatIsInterruptedLater) {
  Limits limits(m_signals, -1);
  EXPECT_EQ(limits.Check(), Limits::Stop::kTimedOut);
  raise(SIGTERM);
  EXPECT_EQ(limits.Check(), Limits::Stop::kTimedOut);
  EXPECT_EQ(limits.interruption(), 0);
}

TEST_F(LimitsTest, TakeNoEndOfAChildForAnInterruption) {
  Limits limits(m_signals, kFarAhead);
  raise(SIGCHLD);
  EXPECT_EQ(limits.Check(), Limits::Stop::kNone);
  EXPECT_EQ(limits.interruption(), 0);
}

}  // namespace
}  // namespace host
