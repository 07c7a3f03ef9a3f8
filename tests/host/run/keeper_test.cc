// What watches a routine's process may be killed or stopped itself: no pass then, and no figures
// that nobody has seen.

#include <gmock/gmock.h>
#include <signal.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

pid_t Parent(pid_t process) {
  const std::string line = ReadFile("/proc/" + std::to_string(process) + "/stat");
  int parent = 0;
  EXPECT_EQ(sscanf(line.c_str() + line.rfind(')'), ") %*c %d", &parent), 1);
  return parent;
}

TEST_F(RunTest, GivesNoFiguresWhenItsKeeperWasKilled) {
  Process process(Command({"Hang", "--json", "report.json"}));
  kill(Parent(AwaitHangingChild()), SIGKILL);
  const Finished run = process.Wait();
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out, StartsWith("error  Hang  its process could not be started, or watched"));
  EXPECT_THAT(run.out, Not(HasSubstr("CPU")));
  EXPECT_THAT(run.out, Not(HasSubstr("memory")));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["verdict"], "error");
  for (const char* figure : {"cpu", "peak_memory"}) {
    EXPECT_EQ(report[figure]["value"], json()) << figure;
    EXPECT_EQ(report[figure]["reason"], "the end of its process was not seen") << figure;
  }
}

TEST_F(RunTest, EndsWhenItsKeeperIsStopped) {
  Process process(Command({"Hang", "--json", "report.json"}));
  const pid_t child = AwaitHangingChild();
  kill(Parent(child), SIGSTOP);
  const Finished run = process.Wait();
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out,
              StartsWith("error  Hang  the process that watches it was stopped by signal"));
  EXPECT_NE(kill(child, 0), 0) << "all that it started is ended";
  EXPECT_EQ(ParseReport(ReadFile("report.json"))["cause"], "crash");
}

TEST_F(RunTest, FailsARoutineThatNeverReturnsWhenItStoodStill) {
  const Finished run = Run({"StandStill", "--timeout-s", "1"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out,
              StartsWith("error  StandStill  timed out after 1.00 s, while its process was "
                         "stopped (Stopped (signal))"));
}

}  // namespace
