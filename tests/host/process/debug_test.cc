// Runs in the process of audio_bench itself.

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

using DebugTest = RunTest;

TEST_F(DebugTest, RunsTheRoutineInTheProcessOfTheBench) {
  Process process(Command({"WriteItsProcess", "--debug"}));
  const std::string own = std::to_string(process.pid());
  EXPECT_EQ(process.Wait().exitCode, 0);
  EXPECT_EQ(ReadFile("bench_work/pid"), own);
}

TEST_F(DebugTest, JudgesTheRunAsAnyOther) {
  Put("in.pcm", std::string(16000, 'x'));
  const Finished run = Run({"Copy", "in.pcm", "/sdcard/out.pcm", "--debug", "--json", "r.json"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, StartsWith("pass  Copy  "));
  EXPECT_EQ(ReadFile("bench_work/sdcard/out.pcm"), std::string(16000, 'x'));
  const json report = ParseReport(ReadFile("r.json"));
  EXPECT_EQ(report["outputs"][0]["sha256"], report["inputs"][0]["sha256"]);
  EXPECT_TRUE(report["cpu"]["value"].is_number());
  EXPECT_EQ(report["underruns"]["value"], 3) << "the engine is asked";
}

TEST_F(DebugTest, NotesWhatCouldNotBeWritten) {
  const Finished run = Run({"WriteTooMuch", "--debug"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("out.pcm could not be written whole"));
}

TEST_F(DebugTest, FindsWhatIsInAWorkspaceThatIsNamedFromTheRoot) {
  const std::string work = m_directory.path() / "w";
  EXPECT_THAT(Run({"WritePcm", "--debug", "--work", work}).out, StartsWith("pass  WritePcm  "));
}

TEST_F(DebugTest, IsNotEndedByAReaderWhoHasGone) {
  const std::string probe = std::string("'") + AUDIO_BENCH_PROBE + "'";
  RunProcess({"/bin/sh", "-c",
              "{ while [ ! -e closed ]; do sleep 0.02; done; " + probe +
                  " run Nothing --debug; echo $? > code; } |"
                  " { exec 0<&-; : > closed; while [ ! -e code ]; do sleep 0.02; done; }"});
  EXPECT_EQ(ReadFile("code"), "2\n");
}

TEST_F(DebugTest, HasNoTimeLimit) {
  Run({"Nothing", "--debug", "--json", "r.json"});
  EXPECT_EQ(ParseReport(ReadFile("r.json"))["time_limit"],
            json({{"value", nullptr}, {"unit", "s"}, {"reason", "there is none with --debug"}}));
  const Finished both = Run({"Nothing", "--debug", "--timeout-s", "5"});
  EXPECT_EQ(both.exitCode, 2);
  EXPECT_THAT(both.err, HasSubstr("--timeout-s excludes --debug"));
}

// A sanitizer takes the limit of core files down for itself.
#ifndef __SANITIZE_ADDRESS__
TEST_F(DebugTest, LeavesTheLimitsOfTheProcessAsTheyAre) {
  rlimit core = {};
  getrlimit(RLIMIT_CORE, &core);
  const rlim_t before = core.rlim_cur;
  core.rlim_cur = core.rlim_max;
  setrlimit(RLIMIT_CORE, &core);
  const std::string there = Run({"PrintCoreLimit", "--debug"}).out;
  core.rlim_cur = before;
  setrlimit(RLIMIT_CORE, &core);
  EXPECT_THAT(there, StartsWith("core limit " + std::to_string(core.rlim_max) + "\n"));
}
#endif

TEST_F(DebugTest, ACrashIsOneOfTheBench) {
  const rlimit none = {};
  rlimit before = {};
  getrlimit(RLIMIT_CORE, &before);
  setrlimit(RLIMIT_CORE, &none);
  EXPECT_EQ(Run({"Crash", "--debug"}).exitCode, 128 + SIGSEGV);
  EXPECT_EQ(Run({"Throw", "--debug"}).exitCode, 128 + SIGABRT) << "nobody catches it";
  setrlimit(RLIMIT_CORE, &before);
}

TEST_F(DebugTest, CanBeInterruptedLikeAnyProgram) {
  Process process(Command({"Hang", "--debug"}));
  while (ReadFile("bench_work/pid").empty()) usleep(1000);
  kill(process.pid(), SIGINT);
  EXPECT_EQ(process.Wait().exitCode, 128 + SIGINT);
}

TEST_F(DebugTest, SaysThatWhatIsPrintedAndLoggedIsNotHeard) {
  Run({"Measure", "true", "--debug", "--json", "r.json"});
  const json report = ParseReport(ReadFile("r.json"));
  EXPECT_EQ(report["results"][0]["name"], "delay");
  EXPECT_EQ(report["results"][0]["value"], nullptr);
  EXPECT_EQ(report["results"][0]["reason"], "nobody listens with --debug");
  EXPECT_EQ(report["results"][2]["value"], 2) << "what is written is read";
  EXPECT_THAT(ReadFile("bench_work/logs/Measure.log"), HasSubstr("goes to standard error alone"));
}

TEST_F(DebugTest, StandsInTheCommandLineOfTheReport) {
  Run({"Nothing", "--debug", "--json", "r.json"});
  const json report = ParseReport(ReadFile("r.json"));
  EXPECT_EQ(report["command"],
            json({"audio_bench", "run", "--work", "bench_work", "--debug", "--", "Nothing"}));
}

}  // namespace
