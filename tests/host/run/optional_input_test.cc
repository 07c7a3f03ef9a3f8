// Inputs that need not be there, and inputs that are too short.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

TEST_F(RunTest, RunsWithoutAnOptionalInput) {
  Finished run = Run({"GoWithout", "in", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_THAT(run.out, HasSubstr("  input   bench_work/in  absent, as it may be\n"));
  const json input = ParseReport(ReadFile("report.json"))["inputs"][0];
  EXPECT_EQ(input["size"]["reason"], "absent");
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
