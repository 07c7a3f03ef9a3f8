// Inputs that need not be there, and inputs that are too short.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

TEST_F(RunTest, RunsWithoutAnOptionalInputAndMissesItWhereAnArgumentNamesIt) {
  const Finished run = Run({"GoWithout", "in", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 3) << run.out;
  EXPECT_THAT(run.out, StartsWith("in\nerror  GoWithout  input in (bench_work/in): No such file or "
                                  "directory; it takes 16-bit samples"));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["inputs"][0]["size"]["reason"], "absent");
  EXPECT_EQ(report["inputs"][0]["problems"], json({"missing_input"}));
  EXPECT_EQ(report["outputs"][0]["size"]["value"], 6) << "it ran all the same";
  for (const char* bytes : {"", "short"}) {
    Put("in", bytes);
    EXPECT_EQ(Run({"GoWithout", "in"}).exitCode, 0);
  }
  fs::remove("bench_work/in");
  fs::create_directory("bench_work/in");
  EXPECT_EQ(Run({"GoWithout", "in"}).exitCode, 3) << "it is there and cannot be read";
}

TEST_F(RunTest, HandsNoneOnAsNoName) {
  const Finished run = Run({"GoWithout", "none", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_THAT(run.out, StartsWith("no name\npass"));
  EXPECT_EQ(ParseReport(ReadFile("report.json"))["inputs"], json::array());
}

TEST_F(RunTest, MissesAnInputWithoutWhichAnOutputIsEmpty) {
  for (const char* output : {"out", "unwritten"}) {
    const Finished run = Run({"CopyIfThere", output, "--json", "report.json"});
    EXPECT_EQ(run.exitCode, 3) << run.out;
    EXPECT_THAT(run.out, StartsWith("error  CopyIfThere  input fixed.in (bench_work/fixed.in): No "
                                    "such file or directory; put "));
    EXPECT_THAT(run.out, HasSubstr(std::string("  also    output ") + output));
    EXPECT_THAT(run.out, Not(HasSubstr("as it may be")));
    EXPECT_EQ(ParseReport(ReadFile("report.json"))["cause"], "missing_input");
  }
  Put("fixed.in", "");
  EXPECT_EQ(Run({"CopyIfThere", "out"}).exitCode, 1) << "it is there";
  Put("fixed.in", "x");
  EXPECT_EQ(Run({"CopyIfThere", "out"}).exitCode, 0);
  EXPECT_EQ(Run({"CopyIfThere", "unwritten"}).exitCode, 1);
}

TEST_F(RunTest, BlamesNoAbsentInputForAnOutputThatCouldNotBeWritten) {
  Put("folder", "a file where a folder should be");
  const Finished run = Run({"CopyIfThere", "folder/out"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("  input   bench_work/fixed.in  absent\n"));
}

TEST_F(RunTest, MissesAnInputThatItsRowNeeds) {
  const Finished run = Run({"ReportOnList", "out"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("input list.txt (bench_work/list.txt): No such file"));
  EXPECT_THAT(run.out, HasSubstr("  output  bench_work/out  12 bytes")) << "it ran all the same";
  Put("list.txt", "");
  EXPECT_EQ(Run({"ReportOnList", "out"}).exitCode, 0);
}

TEST_F(RunTest, RunsOnAnInputThatIsTooShortAndFails) {
  Put("in", std::string(159, 'x'));
  const Finished run = Run({"Copy", "in", "out"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("fail  Copy  input in (bench_work/in) holds no whole block of "
                                  "160 bytes: 159 bytes, and 1 more problem"));
  EXPECT_EQ(fs::file_size("bench_work/out"), 159U) << "which is no whole frame";
}

TEST_F(RunTest, SaysWhatAMissingInputShouldBe) {
  const Finished run = Run({"Copy", "in", "out", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out,
              HasSubstr("No such file or directory; it takes 16-bit samples, 8000 Hz, "
                        "mono: mkdir -p bench_work && ffmpeg -i YOUR_FILE -f s16le -ar 8000 -ac 1 "
                        "bench_work/in\n"));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["inputs"][0]["path"], "bench_work/in");
  EXPECT_EQ(report["inputs"][0]["problems"], json({"missing_input"}));
  EXPECT_FALSE(fs::exists("bench_work"));
}

}  // namespace
