// How a child's end is told, of functions of the test's own. Times are further ahead than any test
// takes.

#include "process/child.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <string_view>

#include "support/temporary_directory.h"

namespace host {
namespace {

class ChildTest : public testing::Test {
 protected:
  ChildTest() : m_limits(m_signals, 1e6) {}
  ~ChildTest() override { fclose(m_log); }
  ChildTest(const ChildTest&) = delete;
  ChildTest& operator=(const ChildTest&) = delete;

  ChildOutcome Run(const std::function<void()>& routine) {
    const Hearing hearing = {.output = [](std::string_view) {}, .log = [](std::string_view) {}};
    Progress progress("a routine", 0);
    return RunInChild({.routine = routine, .afterwards = [] { return EngineFindings(); }}, ".",
                      m_limits, m_log, hearing, progress);
  }

  TemporaryDirectory m_directory;
  FILE* m_log = tmpfile();
  HostSignals m_signals;
  Limits m_limits;
};

TEST_F(ChildTest, ReturnsWithoutASignal) {
  const ChildOutcome outcome = Run([] {});
  EXPECT_EQ(outcome.end, ChildOutcome::End::kReturned);
  EXPECT_EQ(outcome.how, "");
  EXPECT_EQ(outcome.crashSignal, 0);
  EXPECT_EQ(outcome.stopSignal, 0);
  EXPECT_EQ(outcome.interruption, 0);
}

TEST_F(ChildTest, TellsTheSignalThatKilledIt) {
  const ChildOutcome outcome = Run([] { raise(SIGKILL); });
  EXPECT_EQ(outcome.end, ChildOutcome::End::kCrashed);
  EXPECT_EQ(outcome.crashSignal, SIGKILL);
  EXPECT_EQ(outcome.how, "killed by signal 9 (Killed)");
}

TEST_F(ChildTest, TellsTheSignalThatEndsTheHost) {
  raise(SIGTERM);
  const ChildOutcome outcome = Run([] {
    while (true) pause();
  });
  EXPECT_EQ(outcome.end, ChildOutcome::End::kInterrupted);
  EXPECT_EQ(outcome.interruption, SIGTERM);
  EXPECT_EQ(outcome.crashSignal, 0);
}

// The host, which reads its signals from a descriptor, blocks them.
TEST_F(ChildTest, GivesTheRoutineTheSignalsOfAProgram) {
  const ChildOutcome outcome = Run([] {
    sigset_t blocked;
    sigprocmask(SIG_BLOCK, nullptr, &blocked);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) {
      if (sigismember(&blocked, signal) != 0) _exit(signal);
    }
  });
  EXPECT_EQ(outcome.how, "") << "the exit status is a signal that is blocked";
}

}  // namespace
}  // namespace host
