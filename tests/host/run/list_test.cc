// Routines that walk lists of files.

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

class ListTest : public RunTest {
 protected:
  // Puts the inputs from the first to before the last in place, 20 ms each, and one far end.
  static void PutInputs(int first, int last) {
    for (int i = first; i < last; ++i) {
      Put("list/in" + std::to_string(i) + ".pcm", std::string(320, static_cast<char>(i)));
    }
    Put("list/far0.pcm", std::string(32000, 'x'));
    Put("list/far1.pcm", std::string(32000, 'x'));
  }
};

TEST_F(ListTest, IsSummedUpInALine) {
  PutInputs(0, 40);
  const Finished run = Run({"CopyList", "0", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_THAT(run.out, HasSubstr("\n  input   list/in<n>.pcm  40 of 40 there, 0.80 s, 12.8 kB\n"));
  EXPECT_THAT(run.out, HasSubstr("\n  output  list/out<n>.pcm  40 of 40 there, 0.80 s, 12.8 kB\n"));
  EXPECT_THAT(run.out, Not(HasSubstr("peak")));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["outputs"].size(), 40U);
  EXPECT_EQ(report["outputs"][7]["path"], "bench_work/list/out7.pcm");
  EXPECT_EQ(report["outputs"][7]["pattern"], "list/out<n>.pcm");
  EXPECT_THAT(report["outputs"][7]["channels"]["reason"], HasSubstr("--figures"));
  EXPECT_NEAR(report["rtf"]["value"].get<double>() * 0.8, report["elapsed"]["value"], 1e-6)
      << "all of a list, and a far end does not count beside its near end";
}

TEST_F(ListTest, IsMeasuredWhenAskedFor) {
  PutInputs(0, 40);
  const Finished run = Run({"CopyList", "0", "--figures", "--json", "report.json"});
  EXPECT_THAT(run.out, HasSubstr("          highest peak -10.3 dBFS  bench_work/list/out39.pcm\n"));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_TRUE(report["outputs"][7]["channels"]["value"].is_array());
}

TEST_F(ListTest, RunsOnWhatIsThereAndNamesWhatIsMissing) {
  PutInputs(8, 40);
  const Finished run = Run({"CopyList", "0", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, StartsWith("error  CopyList  input list/in0.pcm (bench_work/list/in0.pcm): "
                                  "No such file or directory"));
  EXPECT_THAT(run.out, HasSubstr("  32 of 40 there, 8 missing input, 0.64 s, 10.2 kB\n"
                                 "          missing input  bench_work/list/in0.pcm\n"));
  EXPECT_THAT(run.out, HasSubstr("bench_work/list/in4.pcm\n          and 3 more\n"));
  EXPECT_THAT(run.out, Not(HasSubstr("list/in5.pcm")));
  EXPECT_THAT(run.out, HasSubstr("  40 of 40 there, 8 output empty, 0.64 s, 10.2 kB\n"
                                 "          output empty  bench_work/list/out0.pcm\n"));
  EXPECT_EQ(ReadFile("bench_work/list/out39.pcm").size(), 320U) << "what it wrote stays";
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["problems"].size(), 16U);
  EXPECT_EQ(report["inputs"][5]["problems"], json({"missing_input"}));
}

TEST_F(ListTest, IsNotRunWhenNothingOfAListIsThere) {
  PutInputs(0, 40);
  std::filesystem::remove("bench_work/list/far0.pcm");
  EXPECT_EQ(Run({"CopyList", "0"}).exitCode, 3);
  EXPECT_TRUE(std::filesystem::exists("bench_work/list/out0.pcm")) << "one of two is there";
  std::filesystem::remove("bench_work/list/far1.pcm");
  std::filesystem::remove("bench_work/list/out0.pcm");
  const Finished run = Run({"CopyList", "0"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("  input   list/far<n>.pcm  0 of 2 there, 2 missing input\n"));
  EXPECT_FALSE(std::filesystem::exists("bench_work/list/out0.pcm"));
}

}  // namespace
