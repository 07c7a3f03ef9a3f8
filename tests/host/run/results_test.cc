// What a routine found out, in what is printed and in the report.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "report_schema.h"
#include "run/run_fixture.h"
#include "support/file_bytes.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

TEST_F(RunTest, TellsWhatTheRoutineFoundOut) {
  const Finished run = Run({"Measure", "true", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("\n  result  delay  89 ms\n"
                                 "  result  tempo  120.5 BPM\n"
                                 "  result  beats  2 beats\n"
                                 "  result  errors  none: the routine printed no such line\n"));
  const json results = ParseReport(ReadFile("report.json"))["results"];
  ASSERT_EQ(results.size(), 4u);
  EXPECT_EQ(results[0], json::parse(R"({"name": "delay", "value": 89, "unit": "ms",
      "better": "none", "file": null, "reason": null})"));
  EXPECT_EQ(results[2], json::parse(R"({"name": "beats", "value": 2, "unit": "beats",
      "better": "higher", "file": "beats.txt", "reason": null})"));
  EXPECT_EQ(results[3], json::parse(R"({"name": "errors", "value": null, "unit": "1",
      "better": "lower", "file": null, "reason": "the routine printed no such line"})"));
}

TEST_F(RunTest, TakesNoFigureFromALineThatIsTorn) {
  EXPECT_THAT(Run({"Measure", "false"}).out, HasSubstr("result  delay  0 ms\n"));
}

TEST_F(RunTest, TellsTheLengthOfAnOutputInTheReportAlone) {
  const Finished run = Run({"WritePcm", "--json", "report.json"});
  EXPECT_THAT(run.out, Not(HasSubstr("result")));
  const json results = ParseReport(ReadFile("report.json"))["results"];
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0]["name"], "length");
  EXPECT_EQ(results[0]["file"], "out.pcm");
  EXPECT_EQ(results[0]["unit"], "s");
}

TEST_F(RunTest, TellsTheShareOfWhatADetectorMarks) {
  const Finished run = Run({"Mark", "--json", "report.json"});
  EXPECT_THAT(run.out, HasSubstr("result  speech_share  25 %\n"));
  const json results = ParseReport(ReadFile("report.json"))["results"];
  EXPECT_EQ(results[0], json::parse(R"({"name": "speech_share", "value": 25, "unit": "%",
      "better": "none", "file": "marks.pcm", "reason": null})"));
}

TEST_F(RunTest, HasNoResultsOfARoutineThatWasNotRun) {
  Run({"Copy", "absent.pcm", "out.pcm", "--json", "report.json"});
  EXPECT_EQ(ParseReport(ReadFile("report.json"))["results"], json::array());
}

}  // namespace
