// What a suite does with its cases, from outside.

#include "suite_fixture.h"
#include "support/wav_bytes.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class SuiteRunTest : public SuiteTest {
 protected:
  // Runs these cases. The results are in "r".
  static Finished RunCases(const std::string& cases, std::vector<std::string> more = {}) {
    WriteFile("s.toml", cases);
    std::filesystem::remove_all("r");
    more.insert(more.begin(), {"s.toml", "--out", "r"});
    return Suite(more);
  }
};

TEST_F(SuiteRunTest, EveryVerdictIsCountedOnceAndTold) {
  const Finished suite = RunCases(Case("good", "WritePcm") + Case("bad", "WriteNothing") +
                                  Case("none", "NeedNothing") + Case("crash", "Crash") +
                                  Case("known", "WriteNothing", "known = \"ticket 17\"") +
                                  Case("mended", "WritePcm", "known = \"ticket 18\""));
  EXPECT_EQ(suite.exitCode, 4) << suite.err;
  EXPECT_EQ(Verdicts("r"), "pass fail skip error fail pass");
  const nlohmann::json results = Results("r");
  EXPECT_EQ(results["counts"], nlohmann::json({{"pass", 2},
                                               {"warn", 0},
                                               {"fail", 1},
                                               {"error", 1},
                                               {"skip", 1},
                                               {"known", 1},
                                               {"not_run", 0}}));
  EXPECT_EQ(results["suite"], "s.toml");
  EXPECT_EQ(results["shard"], nullptr);
  EXPECT_EQ(results["cases"][4]["known"], "ticket 17");
  EXPECT_THAT(suite.out, HasSubstr("\n2 passed, 2 failed, 1 skipped, 1 known to fail\n"));
  EXPECT_THAT(suite.out, HasSubstr("\nPASSES  mended  though it is known to fail: ticket 18\n"));
  EXPECT_THAT(suite.out,
              HasSubstr("\nfail    bad     output out.pcm (cases/bad/out.pcm) is absent"));
  EXPECT_THAT(suite.out, HasSubstr("\nresults  r/results.json, results.csv, junit.xml\n"));
}

TEST_F(SuiteRunTest, ALongNameMovesNoReasonButItsOwn) {
  const std::string longName(100, 'n');
  const Finished suite = RunCases(Case("bad", "WriteNothing") + Case(longName, "WriteNothing"));
  EXPECT_THAT(suite.out, HasSubstr("\nfail  bad" + std::string(37, ' ') + "  output "));
  EXPECT_THAT(suite.out, HasSubstr("\nfail  " + longName + "  output "));
}

TEST_F(SuiteRunTest, ARecordingForNothingIsToldWhatThereIs) {
  const auto fault = [](const std::string& name) {
    return RunCases(Case("a", "ReadAll",
                         "arguments = [\"given.pcm\"]\nin = { \"" + name + "\" = \"s.toml\" }"))
        .err;
  };
  EXPECT_THAT(fault("music.wav"),
              HasSubstr("reads no \"music.wav\" with these arguments; it reads \"given.pcm\"\n"));
  EXPECT_THAT(fault("givn.pcm"), HasSubstr("; did you mean \"given.pcm\"?\n"));
}

TEST_F(SuiteRunTest, TheWorstCaseIsTheExitCode) {
  const std::string good = Case("good", "WritePcm");
  const std::string fail = Case("f", "WriteNothing");
  const std::string missing = Case("m", "ReadAll", "arguments = [\"none.in\"]");
  const std::string crash = Case("c", "Crash");
  const std::string skip = Case("s", "NeedNothing");
  EXPECT_EQ(RunCases(good).exitCode, 0);
  EXPECT_EQ(RunCases(good + skip).exitCode, 0);
  EXPECT_EQ(RunCases(skip).exitCode, 77);
  EXPECT_EQ(RunCases(good + fail + skip).exitCode, 1);
  EXPECT_EQ(RunCases(missing + fail).exitCode, 3);
  EXPECT_EQ(RunCases(fail + crash + missing).exitCode, 4);
  EXPECT_EQ(RunCases(Case("k", "Crash", "known = \"why\"")).exitCode, 0);
}

TEST_F(SuiteRunTest, NothingIsStartedWhereACaseCannotBeRunAsItIsDeclared) {
  const std::string good = Case("good", "WritePcm");
  Finished suite = RunCases(good + Case("a", "WritePmc"));
  EXPECT_EQ(suite.exitCode, 2);
  EXPECT_THAT(suite.err, StartsWith("audio_bench: s.toml:6:6: "));
  EXPECT_THAT(suite.err, HasSubstr("did you mean WritePcm?"));
  EXPECT_FALSE(std::filesystem::exists("r"));

  suite = RunCases(good + Case("a", "WriteBytes", "arguments = [\"many\"]"));
  EXPECT_EQ(suite.exitCode, 2);
  EXPECT_THAT(suite.err, HasSubstr("argument 1 of 1 must be a whole number, not \"many\""));
  EXPECT_FALSE(std::filesystem::exists("r"));

  suite = RunCases(good, {"bad*"});
  EXPECT_EQ(suite.exitCode, 2);
  EXPECT_EQ(suite.err, "audio_bench: no case is like \"bad*\"\n");
  EXPECT_EQ(RunCases(good, {"--group", "no"}).exitCode, 2);
  EXPECT_EQ(RunCases(good, {"--shard", "3/2"}).exitCode, 2);
  EXPECT_EQ(RunCases(good, {"-j", "0"}).exitCode, 2);
  EXPECT_EQ(RunCases(good, {"--all", "good"}).exitCode, 2);
}

TEST_F(SuiteRunTest, AGlobChoosesAndResultsStandInDeclaredOrder) {
  const std::string cases = Case("slow", "WorkOn", "arguments = [\"300\"]") +
                            Case("quick", "WritePcm") + Case("other", "WritePcm");
  EXPECT_EQ(RunCases(cases, {"-j4"}).exitCode, 0);
  const nlohmann::json all = Results("r")["cases"];
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0]["id"], "slow");
  EXPECT_EQ(all[1]["id"], "quick");
  EXPECT_EQ(all[2]["index"], 2);

  EXPECT_EQ(RunCases(cases, {"*O*"}).exitCode, 0);
  const nlohmann::json some = Results("r")["cases"];
  ASSERT_EQ(some.size(), 2u);
  EXPECT_EQ(some[1]["id"], "other");
  EXPECT_EQ(some[1]["index"], 1);
}

TEST_F(SuiteRunTest, ADryRunOnlySaysWhatThereIs) {
  WriteFile("s.toml", Case("a", "WriteBytes", "arguments = [\"8\"]") + Case("Nothing", "Nothing"));
  const Finished suite = Suite({"s.toml", "--dry-run", "--out", "r"});
  EXPECT_EQ(suite.exitCode, 0);
  EXPECT_EQ(suite.out, "a  WriteBytes 8\nNothing\n2 cases\n");
  EXPECT_FALSE(std::filesystem::exists("r"));
  WriteFile("s.toml", Case("a", "WriteBytes", "arguments = [\"8\"]") +
                          Case("b", "Copy", "arguments = [\"out.pcm\", \"c\"]\nafter = [\"a\"]"));
  EXPECT_EQ(Suite({"s.toml", "b", "--dry-run"}).out,
            "a  WriteBytes 8  (for the cases that follow it)\nb  Copy out.pcm c\n1 case\n");
}

TEST_F(SuiteRunTest, EachCaseHasItsWorkspaceItsReportAndItsOutputs) {
  EXPECT_EQ(RunCases(Case("a", "WritePcm") + Case("b", "WritePcm")).exitCode, 0);
  const nlohmann::json results = Results("r");
  for (const nlohmann::json& each : results["cases"]) {
    const std::string id = each["id"];
    EXPECT_EQ(ParseReport(ReadFile("r/" + each["report"].get<std::string>()))["workspace"],
              "r/cases/" + id);
    ASSERT_EQ(each["outputs"].size(), 1u);
    EXPECT_EQ(each["outputs"][0]["path"], "cases/" + id + "/out.pcm");
    EXPECT_EQ(each["outputs"][0]["name"], "out.pcm");
    // Of the bytes 00 00 00 40 00 e0 00 00, as another program computes it.
    EXPECT_EQ(each["outputs"][0]["sha256"],
              RunProcess({"/usr/bin/sha256sum", "r/cases/" + id + "/out.pcm"}).out.substr(0, 64));
    EXPECT_TRUE(each["elapsed"].is_number());
  }
}

TEST_F(SuiteRunTest, ACaseThatFollowsAnotherReadsWhatThatHasLeft) {
  const std::string copy = "arguments = [\"out.pcm\", \"b.pcm\"]\nafter = [\"first\"]";
  // Declared before the one that it follows.
  const Finished suite =
      RunCases(Case("second", "Copy", copy) + Case("first", "WriteBytes", "arguments = [\"320\"]"));
  EXPECT_EQ(suite.exitCode, 0) << suite.out << suite.err;
  EXPECT_EQ(ReadFile("r/cases/second/out.pcm"), ReadFile("r/cases/first/out.pcm"));

  // Chosen alone it is run after the other one all the same, which is not counted.
  EXPECT_EQ(
      RunCases(Case("first", "WriteBytes", "arguments = [\"320\"]") + Case("second", "Copy", copy),
               {"second"})
          .exitCode,
      0);
  EXPECT_EQ(Results("r")["counts"]["pass"], 1);
  EXPECT_EQ(Results("r")["cases"].size(), 1u);

  EXPECT_EQ(RunCases(Case("first", "WriteNothing") + Case("second", "Copy", copy)).exitCode, 1);
  const nlohmann::json skipped = Results("r")["cases"][1];
  EXPECT_EQ(skipped["verdict"], "skip");
  EXPECT_EQ(skipped["cause"], "after");
  EXPECT_EQ(skipped["reason"], "not run, because first, which it follows, did not pass");
}

TEST_F(SuiteRunTest, InputsAreTakenFromWhereTheCaseSays) {
  const std::vector<short> samples(160, 1234);
  WriteFile("mine", WavBytes({.rate = 8000}, samples));
  const std::string words = "arguments = [\"/sdcard/in.pcm\", \"out.pcm\"]\n";
  for (const char* const name : {"in.pcm", "/sdcard/in.pcm"}) {
    EXPECT_EQ(RunCases(Case("a", "Copy", words + "in = { \"" + name + "\" = \"mine\" }")).exitCode,
              0);
    EXPECT_EQ(ReadFile("r/cases/a/out.pcm"), SampleBytes(samples));
  }
  EXPECT_EQ(RunCases(Case("a", "Copy", words + "in = { \"in.pcm\" = \"none\" }")).exitCode, 3);

  const Finished suite = RunCases(Case("a", "Copy", words + "in = { \"im.pcm\" = \"mine\" }"));
  EXPECT_EQ(suite.exitCode, 2);
  EXPECT_THAT(suite.err, HasSubstr("s.toml:2:6: "));
}

TEST_F(SuiteRunTest, ARepeatedCaseMustLeaveTheSameBytesWhereThatIsAsked) {
  EXPECT_EQ(RunCases(Case("a", "WritePcm", "repeat = 3\nsame_bytes = true")).exitCode, 0);
  EXPECT_EQ(RunCases(Case("a", "WriteItsProcess", "repeat = 2")).exitCode, 0);
  EXPECT_EQ(RunCases(Case("a", "WriteItsProcess", "repeat = 2\nsame_bytes = true")).exitCode, 1);
  const nlohmann::json cases = Results("r")["cases"];
  EXPECT_EQ(cases[0]["verdict"], "pass");
  EXPECT_EQ(cases[1]["verdict"], "fail");
  EXPECT_EQ(cases[1]["cause"], "not_same_bytes");
  EXPECT_EQ(cases[1]["reason"], "pid differs (same_bytes, compared with a-1)");
}

TEST_F(SuiteRunTest, LimitsOfACaseHoldForItsRun) {
  EXPECT_EQ(RunCases(Case("a", "Hang", "timeout_s = 0.2")).exitCode, 4);
  const nlohmann::json one = Results("r")["cases"][0];
  EXPECT_EQ(one["cause"], "timeout");
  EXPECT_THAT(one["reason"].get<std::string>(), StartsWith("timed out after 0.20 s"));
}

TEST_F(SuiteRunTest, AFolderThatIsThereIsTakenToResumeOnly) {
  EXPECT_EQ(RunCases(Case("a", "WritePcm")).exitCode, 0);
  const Finished again = Suite({"s.toml", "--out", "r"});
  EXPECT_EQ(again.exitCode, 2);
  EXPECT_EQ(again.err, "audio_bench: r is there already; --resume goes on with it\n");
  std::filesystem::create_directories("other/folder");
  EXPECT_EQ(Suite({"s.toml", "--out", "other", "--resume"}).err,
            "audio_bench: other holds no results of a suite\n");
}

TEST_F(SuiteRunTest, WithoutAFolderTheResultsAreCalledAfterTheTime) {
  WriteFile("s.toml", Case("a", "WritePcm"));
  EXPECT_EQ(Suite({"s.toml", "--resume"}).exitCode, 2);
  ASSERT_EQ(Suite({"s.toml"}).exitCode, 0);
  const auto first = std::filesystem::read_symlink("bench_results/latest");
  EXPECT_THAT(first.string(), testing::MatchesRegex("[0-9]+T[0-9]+Z(-2)?"));
  EXPECT_EQ(Verdicts("bench_results/latest"), "pass");
  ASSERT_EQ(Suite({"s.toml"}).exitCode, 0);
  EXPECT_NE(std::filesystem::read_symlink("bench_results/latest"), first);
  EXPECT_EQ(Suite({"s.toml", "--resume"}).exitCode, 0);
}

TEST_F(SuiteRunTest, WithoutAFileTheCasesAreTheRoutinesOfTheCatalogue) {
  EXPECT_EQ(Suite({"Write*Pcm", "--out", "r"}).exitCode, 0);
  EXPECT_EQ(Results("r")["cases"][0]["id"], "WritePcm");
  EXPECT_EQ(Results("r")["suite"], nullptr);

  std::filesystem::remove_all("r");
  EXPECT_EQ(Suite({"WriteBytes", "--out", "r"}).exitCode, 77);
  EXPECT_EQ(Results("r")["cases"][0]["reason"],
            "it takes arguments, and there is no recording with words for it");
}

// The folder of the results, and not the end of a longer name.
TEST_F(SuiteRunTest, NamesFilesRelativeToTheFolderOfTheResults) {
  WriteFile("s.toml", Case("first", "WriteEmpty"));
  EXPECT_EQ(Suite({"s.toml", "--out", "t"}).exitCode, 1);
  EXPECT_EQ(Results("t")["cases"][0]["reason"], "output out.pcm (cases/first/out.pcm) is empty");
}

}  // namespace
