// Whatever a routine started ends with it.

#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>

#include "run/run_fixture.h"

namespace {

bool GoneWithin(pid_t process, int milliseconds) {
  for (int i = 0; i < milliseconds; ++i) {
    if (kill(process, 0) != 0) return true;
    usleep(1000);
  }
  return false;
}

pid_t Daemon() { return std::stoi(ReadFile("bench_work/daemon")); }

TEST_F(RunTest, EndsADaemonWhenTheRoutineReturns) {
  const Finished run = Run({"LeaveDaemon", "false"});
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_NE(kill(Daemon(), 0), 0);
}

TEST_F(RunTest, EndsTheRoutineWhenTheHostIsKilled) {
  Process process(Command({"Hang"}));
  const pid_t child = AwaitHangingChild();
  kill(process.pid(), SIGKILL);
  process.Wait();
  EXPECT_TRUE(GoneWithin(child, 5000));
}

TEST_F(RunTest, EndsADaemonWhenTheTimeIsUp) {
  const Finished run = Run({"LeaveDaemon", "true", "--timeout-s", "1"});
  EXPECT_EQ(run.exitCode, 4) << run.out;
  EXPECT_NE(kill(Daemon(), 0), 0);
}

TEST_F(RunTest, EndsADaemonWhenTheHostIsKilled) {
  Process process(Command({"LeaveDaemon", "true"}));
  while (!std::filesystem::exists("bench_work/pid") || ReadFile("bench_work/pid").empty()) {
    usleep(1000);
  }
  kill(process.pid(), SIGKILL);
  process.Wait();
  EXPECT_TRUE(GoneWithin(Daemon(), 5000));
  EXPECT_TRUE(GoneWithin(std::stoi(ReadFile("bench_work/pid")), 5000));
}

}  // namespace
