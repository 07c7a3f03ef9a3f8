// A run that goes wrong names what it went wrong by, and blames nothing else.

#include <gmock/gmock.h>
#include <signal.h>

#include <nlohmann/json.hpp>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

TEST_F(RunTest, ATimeOutIsNoFaultOfAnInput) {
  Put("in", std::string(160, 'x'));
  const Finished run = Run({"HangOn", "in", "--timeout-s", "0.3", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 4);
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["reason"], "timed out after 0.30 s");
  EXPECT_EQ(report["inputs"][0]["problems"], json::array());
  EXPECT_THAT(run.out, Not(HasSubstr("could not be read")));
}

TEST_F(RunTest, AnInterruptionIsNoFaultOfAnInput) {
  Put("in", std::string(160, 'x'));
  Process process(Command({"HangOn", "in", "--json", "report.json"}));
  while (ReadFile("bench_work/logs/HangOn.log").empty()) usleep(1000);
  kill(process.pid(), SIGINT);
  EXPECT_EQ(process.Wait().exitCode, 128 + SIGINT);
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["reason"], "interrupted (Interrupt)");
  EXPECT_EQ(report["inputs"][0]["problems"], json::array());
}

}  // namespace
