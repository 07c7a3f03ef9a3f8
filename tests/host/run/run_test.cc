// Runs through the program itself, on the probe catalogue: verdicts, exit codes, isolation.

#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "report_schema.h"
#include "run/run_fixture.h"
#include "support/file_bytes.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace fs = std::filesystem;

TEST_F(RunTest, HandsArgumentsOn) {
  const Finished run = Run({"Echo", "text with spaces", "", "true", "-5"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, StartsWith("text=text with spaces more= flag=1 number=-5\npass  Echo  "));
  EXPECT_THAT(Run({"Echo", "-.5", "-", "false", "-0"}).out,
              StartsWith("text=-.5 more=- flag=0 number=0\n"))
      << "neither numbers nor a dash alone are options";
}

TEST_F(RunTest, TakesOptionsBetweenArgumentsAndAnyWordAfterTwoDashes) {
  const Finished run =
      Run({"Echo", "list", "--work", "w", "--timeout-s=5", "--", "--json", "false", "-2147483648"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, StartsWith("text=list more=--json flag=0 number=-2147483648\n"));
  EXPECT_TRUE(fs::exists("w/logs/Echo.log"));
}

TEST_F(RunTest, NamesTheArgumentThatDoesNotFitBeforeAnythingIsRun) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"Echo"}, "takes 4 arguments, not 0"},
      {{"Echo", "a", "b", "true", "1", "2"}, "takes 4 arguments, not 5"},
      {{"Echo", "a", "b", "maybe", "1"}, "argument 3 of 4 must be true or false, not \"maybe\""},
      {{"Echo", "a", "b", "true", "2147483648"},
       "argument 4 of 4 must be a whole number, not \"2147483648\""}};
  for (const auto& [words, fault] : cases) {
    const Finished run = Run(words);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "audio_bench: Echo " + fault +
                           ": void Echo(const char* text, char* more, bool flag, int number)\n");
  }
  EXPECT_FALSE(fs::exists("bench_work"));
}

TEST_F(RunTest, SkipsWhatCannotBeRun) {
  const Finished run = Run({"Helper", "--json", "report.json"});
  const std::string reason = "a helper: routines call it, it does not run by itself";
  EXPECT_EQ(run.exitCode, 77);
  EXPECT_EQ(run.out, "skip  Helper  " + reason + "\n");
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["verdict"], "skip");
  EXPECT_EQ(report["exit_code"], 77);
  EXPECT_EQ(report["reason"], reason);
}

TEST_F(RunTest, SkipsWhatTheEngineLacksBeforeAnyFileIsLookedFor) {
  Finished run = Run({"WriteFor", "gold", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 77);
  EXPECT_EQ(run.out, "skip  WriteFor  this engine has no gold\n");
  EXPECT_EQ(ParseReport(ReadFile("report.json"))["reason"], "this engine has no gold");
  EXPECT_FALSE(fs::exists("bench_work"));  // No child was started.
  EXPECT_EQ(Run({"NeedNothing"}).exitCode, 77);
}

TEST_F(RunTest, LooksForTheOutputsThatFollowFromTheArguments) {
  const Finished run = Run({"WriteFor", "silver"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, HasSubstr("output  bench_work/for-silver  2 bytes"));
}

TEST_F(RunTest, PassesOutputAndLogOnAndKeepsTheLog) {
  const Finished run = Run({"PrintAndLog"});
  EXPECT_THAT(run.out, StartsWith("printed\npass  PrintAndLog  "));
  EXPECT_EQ(run.err, "logged\n");
  EXPECT_EQ(ReadFile("bench_work/logs/PrintAndLog.log"), "logged\n");
}

TEST_F(RunTest, EndsALineThatTheRoutineLeftOpen) {
  EXPECT_THAT(Run({"PrintPartOfALine"}).out, StartsWith("no newline\npass  "));
}

TEST_F(RunTest, SurvivesWhatEndsTheRoutine) {
  const std::pair<const char*, const char*> cases[] = {
      {"Crash", "killed by signal 11 \\(Segmentation fault\\)"},
      {"Abort", "killed by signal 6 \\(Aborted\\)"},
      {"Throw", "killed by signal 6 \\(Aborted\\)"},
      {"ExitEarly", "ended its process with exit status 0 instead of returning"}};
  for (const auto& [routine, how] : cases) {
    const Finished run = Run({routine, "--json", "report.json"});
    EXPECT_EQ(run.exitCode, 4);
    EXPECT_THAT(run.out, testing::ContainsRegex(std::string("error  ") + routine + "  " + how));
    EXPECT_EQ(ParseReport(ReadFile("report.json"))["verdict"], "error");
  }
  EXPECT_THAT(Run({"Abort"}).out, StartsWith("about to abort\n")) << "what it printed is not lost";
  EXPECT_THAT(ReadFile("bench_work/logs/Throw.log"), HasSubstr("thrown by the routine"));
}

TEST_F(RunTest, EndsWhatHangs) {
  const Finished run = Run({"Hang", "--timeout-s", "1"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out, StartsWith("error  Hang  timed out after 1.00 s  "));
  EXPECT_EQ(run.err, "hanging\n") << "no progress where there is no terminal";
  const pid_t child = std::stoi(ReadFile("bench_work/pid"));
  EXPECT_EQ(kill(child, 0), -1) << "the routine's process has ended";
}

TEST_F(RunTest, ReportsAnInterruptionAndEndsByIt) {
  for (const int signal : {SIGINT, SIGTERM}) {
    fs::remove_all("bench_work");
    Process process({AUDIO_BENCH_PROBE, "run", "Hang", "--json", "report.json"});
    const pid_t child = AwaitHangingChild();
    kill(process.pid(), signal);
    const Finished run = process.Wait();
    EXPECT_EQ(run.exitCode, 128 + signal);
    EXPECT_THAT(run.out, StartsWith("error  Hang  interrupted ("));
    EXPECT_EQ(kill(child, 0), -1);
    EXPECT_EQ(ParseReport(ReadFile("report.json"))["exit_code"], 128 + signal);
  }
}

TEST_F(RunTest, FailsOnAnOutputThatIsAbsentStaleOrEmpty) {
  Finished run = Run({"WriteNothing"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out,
              StartsWith("fail  WriteNothing  output out.pcm (bench_work/out.pcm) is absent  "));
  EXPECT_EQ(Run({"WritePcm"}).exitCode, 0);
  EXPECT_EQ(Run({"WritePcm"}).exitCode, 0) << "the same bytes again";
  run = Run({"WriteNothing"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("was not written; what is there is from before"));
  run = Run({"WriteEmpty"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("(bench_work/out.pcm) is empty"));
}

TEST_F(RunTest, FailsOnAnOutputThatIsCutShort) {
  const Finished run = Run({"WriteTooMuch"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("out.pcm could not be written whole: File too large"));
}

TEST_F(RunTest, SaysWhatAFlushFailedOf) {
  const Finished run = Run({"FlushTooMuch"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("out.pcm could not be written whole: File too large"));
}

TEST_F(RunTest, FailsOnSamplesThatAreNotFinite) {
  const Finished run = Run({"WriteNotFinite"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("3 samples are not finite in output /sdcard/out.f32"));
  EXPECT_EQ(Run({"WriteNoWave"}).exitCode, 1);
}

TEST_F(RunTest, KeepsTheBytesOfAFileThatIsLeftOpen) {
  EXPECT_EQ(Run({"LeaveOpen"}).exitCode, 0);
  EXPECT_EQ(fs::file_size("bench_work/out.pcm"), 6U);
}

TEST_F(RunTest, ChecksInputsBeforeItRunsTheRoutine) {
  Finished run = Run({"Copy", "/sdcard/in", "d:\\out"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, StartsWith("error  Copy  input /sdcard/in (bench_work/sdcard/in): No such "
                                  "file or directory"));
  fs::create_directories("bench_work/sdcard/in");
  EXPECT_EQ(Run({"Copy", "/sdcard/in", "d:\\out"}).exitCode, 3);
  EXPECT_FALSE(fs::exists("bench_work/D"));
  fs::remove("bench_work/sdcard/in");

  WriteFile("bench_work/sdcard/in", std::string(160, 'x'));
  run = Run({"Copy", "/sdcard/in", "d:\\out", "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(ReadFile("bench_work/D/out"), std::string(160, 'x'));
  const json report = ParseReport(ReadFile("report.json"));
  EXPECT_EQ(report["inputs"][0]["name"], "/sdcard/in");
  EXPECT_EQ(report["outputs"][0]["path"], "bench_work/D/out");
  EXPECT_EQ(report["outputs"][0]["size"], json({{"value", 160}, {"unit", "bytes"}}));
  EXPECT_TRUE(report["rtf"]["value"].is_number());
}

TEST_F(RunTest, MapsEveryNameIntoTheWorkspace) {
  EXPECT_EQ(Run({"OpenByAnyName"}).exitCode, 0);
  EXPECT_EQ(ReadFile("bench_work/sdcard/deep/er/a"), "a");
  EXPECT_EQ(ReadFile("bench_work/C/music/b"), "b");
  EXPECT_EQ(ReadFile("bench_work/F/Stream/c"), "c");
  EXPECT_EQ(ReadFile("bench_work/folder/d"), "d");

  const Finished run = Run({"OpenOutside"});
  EXPECT_THAT(run.out, StartsWith("Permission denied\nPermission denied\nPermission denied\npass"));
  EXPECT_THAT(run.err, MatchesRegex("(not opened, because it leads out of the workspace: .*\n)+"));
  EXPECT_FALSE(fs::exists("outside"));
}

TEST_F(RunTest, WritesAWaveCopyBesideHeaderlessAudioWhenAsked) {
  EXPECT_EQ(Run({"WriteLoud"}).exitCode, 0);
  EXPECT_FALSE(fs::exists("bench_work/sdcard/out.f32.wav"));
  const Finished run = Run({"WriteLoud", "--wav"});
  EXPECT_THAT(run.out, HasSubstr("attenuated by 7.0 dB to a peak of -1 dBFS"));
  EXPECT_EQ(fs::file_size("bench_work/sdcard/out.f32.wav"), 44U + 8);
}

TEST_F(RunTest, RefusesAWorkspaceThatCannotBe) {
  WriteFile("file", "");
  const Finished run = Run({"Nothing", "--work", "file"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, StartsWith("audio_bench: cannot create the folder file: "));
  fs::create_directory("bench_work");
  WriteFile("bench_work/logs", "");
  EXPECT_EQ(Run({"Nothing"}).exitCode, 2);
}

TEST_F(RunTest, RefusesAReportThatCannotBeWrittenBeforeItRuns) {
  const Finished run = Run({"WritePcm", "--json", "no/folder/report.json"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err,
            "audio_bench: cannot write no/folder/report.json: No such file or directory\n");
  EXPECT_FALSE(fs::exists("bench_work"));
}

TEST_F(RunTest, KeepsTheExitCodeOfAFailureThatCannotBeReported) {
  EXPECT_EQ(Run({"Nothing", "--json", "/dev/full"}).exitCode, 2);
  const Finished run = Run({"Crash", "--json", "/dev/full"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_EQ(run.err, "audio_bench: cannot write /dev/full: No space left on device\n");
}

TEST_F(RunTest, ReplacesAnEarlierReportAndLeavesNothingElse) {
  WriteFile("report.json", std::string(100000, 'x'));
  EXPECT_EQ(Run({"Nothing", "--json", "report.json"}).exitCode, 0);
  EXPECT_EQ(ParseReport(ReadFile("report.json"))["routine"], "Nothing");
  EXPECT_EQ(fs::status("report.json").permissions(),
            fs::status("bench_work/logs/Nothing.log").permissions())
      << "readable by whom any other file is";
  EXPECT_EQ(Run({"Nothing", "--json", "/dev/null"}).exitCode, 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 2)
      << "the workspace and the report";
}

}  // namespace
