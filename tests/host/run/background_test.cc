// What goes on after a routine has returned, and routines that never return.

#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

json Report() { return ParseReport(ReadFile("report.json")); }

TEST_F(RunTest, LetsTheEngineFinishAfterTheRoutineHasReturned) {
  const Finished run = Run({"WorkOn", "300", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_EQ(std::filesystem::file_size("bench_work/out.pcm"), 6U);
  EXPECT_LT(Report()["elapsed"]["value"], 0.25) << "the routine has returned at once";
  EXPECT_GT(Report()["ran_on"]["value"], 0.25);
  EXPECT_EQ(Report()["underruns"]["value"], 3);
  EXPECT_EQ(Report()["overruns"]["value"], 1);
}

TEST_F(RunTest, GivesTheEngineTwoSecondsAndLetsAPlayerRunOnToItsEnd) {
  Process player(Command({"PlayOn", "2500", "--work", "player", "--json", "player.json"}));
  const Finished run = Run({"WorkOn", "20000", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 1) << run.out;
  EXPECT_THAT(run.out, HasSubstr("out.pcm) is absent"));
  EXPECT_NEAR(Report()["ran_on"]["value"], 2, 0.5);

  const Finished played = player.Wait();
  EXPECT_EQ(played.exitCode, 0) << played.out;
  EXPECT_NEAR(ParseReport(ReadFile("player.json"))["ran_on"]["value"], 2.5, 0.5)
      << "more than the two seconds";
}

TEST_F(RunTest, GivesTheEngineItsTwoSecondsHoweverLongAPlayerMayRunOn) {
  const Finished run = Run({"WorkOn", "600", "--linger-s", "0.1"});
  EXPECT_EQ(run.exitCode, 0) << run.out;
}

TEST_F(RunTest, LetsAPlayerRunOnForAsLongAsAskedFor) {
  Put("out.pcm", "");
  const Finished run = Run({"PlayOn", "60000", "--linger-s", "0.5", "--json", "report.json"});
  EXPECT_THAT(run.out, HasSubstr("out.pcm) was not written")) << "judged by its files";
  EXPECT_NEAR(Report()["ran_on"]["value"], 0.5, 0.3);
}

TEST_F(RunTest, StopsARoutineThatNeverReturnsAndJudgesItByItsFile) {
  Finished run = Run({"RecordForEver", "64", "--timeout-s", "0.5", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_THAT(run.out, StartsWith("pass  RecordForEver  0.5"));
  EXPECT_THAT(run.out, HasSubstr("peak")) << "its file is measured";
  EXPECT_EQ(Report()["rtf"]["value"], nullptr);
  EXPECT_EQ(Report()["ran_on"]["value"], nullptr);
  EXPECT_EQ(Report()["underruns"]["reason"], "the routine did not return");

  run = Run({"RecordForEver", "1", "--timeout-s", "0.5"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("is not whole"));
}

TEST_F(RunTest, GivesARoutineThatNeverReturnsTenSeconds) {
  Process process(Command({"RecordForEver", "64", "--json", "report.json"}));
  while (!std::filesystem::exists("bench_work/out.pcm")) usleep(1000);
  EXPECT_EQ(Report()["time_limit"]["value"], 10.0);
  kill(process.pid(), SIGTERM);
  EXPECT_EQ(process.Wait().exitCode, 128 + SIGTERM) << "which nobody planned";
}

}  // namespace
