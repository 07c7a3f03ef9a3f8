// A report that was asked for says this run or is gone, however the run ends.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "report_schema.h"
#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

namespace fs = std::filesystem;

class EarlierReportTest : public RunTest {
 protected:
  // A report of an earlier run that passed.
  static void LeavePass() {
    fs::remove("report.json");
    EXPECT_EQ(Run({"Nothing", "--json", "report.json"}).exitCode, 0);
    EXPECT_EQ(Verdict(), "pass");
  }

  static std::string Verdict() {
    return fs::exists("report.json") ? ParseReport(ReadFile("report.json"))["verdict"] : "gone";
  }

  // Waits until something has come true; for so long only that a test that fails ends.
  static bool Await(const std::function<bool()>& condition) {
    for (int i = 0; i < 20000 && !condition(); ++i) usleep(1000);
    return condition();
  }

  // A workspace that somebody else uses, for as long as the descriptor is open.
  static int UsedWorkspace() {
    fs::create_directory("bench_work");
    const int folder = open("bench_work", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    EXPECT_EQ(flock(folder, LOCK_EX), 0);
    return folder;
  }

  // The same words under a limit of the size of files, where standard output is a pipe.
  static Finished RunOnAFullDisk(const std::string& words) {
    return RunProcess({"/bin/sh", "-c",
                       "{ (ulimit -f 0; exec '" AUDIO_BENCH_PROBE "' run " + words +
                           "); echo \"exit code $?\"; } 2>&1 | cat"});
  }
};

TEST_F(EarlierReportTest, DoesNotOutliveARunThatEndsByItself) {
  const std::vector<std::pair<int, std::vector<std::string>>> runs = {
      {1, {"WriteNothing"}},
      {2, {"NoRoutine"}},
      {2, {"Nothing", "too", "many"}},
      {2, {"Nothing", "--", "--too-many"}},
      {2, {"Echo", "too few"}},
      {2, {"Nothing", "--bogus"}},
      {2, {"Nothing", "--timeout-s", "x"}},
      {2, {"Nothing", "--timeout-s"}},
      {2, {"Nothing", "--work="}},
      {2, {"Nothing", "--work", "report.json"}},
      {2, {"Nothing", "--json"}},
      {2, {"Nothing", "--json="}},
      {2, {"Nothing", "--json", "other.json"}},
      {2, {"WriteTo", "../report.json", "--work", "."}},
      {3, {"ReadAll", "absent"}},
      {4, {"Crash"}},
      {4, {"Hang", "--timeout-s", "0.1"}},
      {77, {"Helper"}},
      {77, {"NeedNothing"}}};
  for (auto [exitCode, words] : runs) {
    for (const bool first : {true, false}) {
      LeavePass();
      auto all = words;
      all.insert(first ? all.begin() : all.end(), {"--json", "report.json"});
      if (!first && words.back() == "--too-many") continue;
      const Finished run = Run(all);
      if (words[0] == "WriteTo") exitCode = run.exitCode;
      EXPECT_EQ(run.exitCode, exitCode) << testing::PrintToString(all) << run.err;
      EXPECT_NE(Verdict(), "pass") << testing::PrintToString(all);
    }
  }
}

TEST_F(EarlierReportTest, DoesNotOutliveAWorkspaceInUse) {
  LeavePass();
  const int folder = UsedWorkspace();
  EXPECT_EQ(Run({"Nothing", "--json", "report.json"}).exitCode, 2);
  EXPECT_EQ(Verdict(), "error");
  close(folder);
}

TEST_F(EarlierReportTest, DoesNotOutliveASignalWhileTheRunWaits) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGKILL}) {
    LeavePass();
    const int folder = UsedWorkspace();
    Process process(Command({"Nothing", "--wait", "--json", "report.json"}));
    EXPECT_TRUE(Await([] { return Verdict() != "pass"; })) << "already while it waits";
    kill(process.pid(), signal);
    EXPECT_EQ(process.Wait().exitCode, 128 + signal);
    close(folder);
    const json report = ParseReport(ReadFile("report.json"));
    EXPECT_EQ(report["verdict"], "error");
    if (signal == SIGQUIT || signal == SIGKILL) continue;
    EXPECT_EQ(report["exit_code"], 128 + signal);
    EXPECT_EQ(report["signal"]["value"], signal);
    EXPECT_THAT(report["reason"], HasSubstr("while waiting for the workspace"));
  }
}

TEST_F(EarlierReportTest, GivesWayToTheRunThatHasWaited) {
  LeavePass();
  const int folder = UsedWorkspace();
  Process process(Command({"WritePcm", "--wait", "--json", "report.json"}));
  EXPECT_TRUE(Await([] { return Verdict() != "pass"; }));
  close(folder);
  EXPECT_EQ(process.Wait().exitCode, 0);
  EXPECT_EQ(ParseReport(ReadFile("report.json"))["routine"], "WritePcm");
}

TEST_F(EarlierReportTest, DoesNotOutliveAFullDisk) {
  for (const std::string routine : {"Nothing", "NoRoutine", "ReadAll absent", "Crash"}) {
    LeavePass();
    const Finished run = RunOnAFullDisk(routine + " --json report.json");
    EXPECT_THAT(run.out, HasSubstr("cannot write report.json: File too large")) << routine;
    EXPECT_EQ(Verdict(), "gone") << routine;
  }
  WriteFile("recording", "not a report");
  RunOnAFullDisk("NoRoutine --json recording");
  EXPECT_EQ(ReadFile("recording"), "not a report");
}

// As it is for somebody else than root.
TEST_F(EarlierReportTest, DoesNotOutliveAFolderThatTakesNoNewFile) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become nobody";
  for (const auto& [routine, exitCode] : {std::pair("Nothing", 0), std::pair("NoRoutine", 2)}) {
    LeavePass();
    fs::permissions(".", fs::perms(0755));
    fs::permissions("report.json", fs::perms(0666));
    fs::remove_all("bench_work");
    fs::create_directory("bench_work");
    fs::permissions("bench_work", fs::perms(0777));
    const Finished run =
        RunProcess({"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                    AUDIO_BENCH_PROBE, "run", routine, "--json", "report.json"});
    EXPECT_EQ(run.exitCode, exitCode) << run.err;
    EXPECT_EQ(ParseReport(ReadFile("report.json"))["routine"], routine);
    EXPECT_EQ(Verdict(), exitCode == 0 ? "pass" : "error");
  }
}

TEST_F(EarlierReportTest, IsKnownHoweverItIsFormatted) {
  LeavePass();
  const json report = ParseReport(ReadFile("report.json"));
  for (const std::string& text : {report.dump(), report.dump(4), "\n\t" + report.dump(1)}) {
    WriteFile("report.json", text);
    EXPECT_EQ(Run({"NoRoutine", "--json", "report.json"}).exitCode, 2);
    EXPECT_EQ(Verdict(), "error");
  }
  for (const char* other : {R"({"schema_version": 3, "name": "mine"})", "[]", " "}) {
    WriteFile("report.json", other);
    EXPECT_EQ(Run({"NoRoutine", "--json", "report.json"}).exitCode, 2);
    EXPECT_EQ(ReadFile("report.json"), other);
  }
}

// It would be a file of the run, but of none that has been.
TEST_F(EarlierReportTest, DoesNotOutliveBeingAnOutputToo) {
  LeavePass();
  EXPECT_EQ(Run({"WriteTo", "report.json", "--work", ".", "--json", "report.json"}).exitCode, 2);
  EXPECT_EQ(Verdict(), "error");
  LeavePass();
  EXPECT_EQ(Run({"ReadAll", "report.json", "--work", ".", "--json", "report.json"}).exitCode, 2);
  EXPECT_EQ(Verdict(), "pass") << "what it would read is not touched";
}

// A pipe that has a reader which reads nothing.
class StuckReaderTest : public EarlierReportTest {
 protected:
  StuckReaderTest() {
    EXPECT_EQ(mkfifo("pipe", 0600), 0);
    m_reader = open("pipe", O_RDWR | O_CLOEXEC);
  }
  ~StuckReaderTest() override { close(m_reader); }

  // A run whose report is longer than a pipe.
  static std::vector<std::string> LongReport() {
    return {"/usr/bin/timeout",       "-s",    "KILL", "60", AUDIO_BENCH_PROBE, "run", "StatOf",
            std::string(100000, 'n'), "--json"};
  }

  bool PipeIsFull() const {
    int bytes = 0;
    return ioctl(m_reader, FIONREAD, &bytes) == 0 && bytes >= 32768;
  }

 private:
  int m_reader;
};

TEST_F(StuckReaderTest, HasAsLongAsTheRunToTakeTheReport) {
  for (const char* const path : {"pipe", "-"}) {
    std::vector<std::string> words = LongReport();
    words.insert(words.end(), {path, "--timeout-s", "0.2"});
    std::string command = "exec";
    for (const std::string& word : words) command += " '" + word + "'";
    // A shell word may be longer than an argument of it.
    WriteFile("script", command + (*path == '-' ? " > pipe\n" : "\n"));
    const Finished run = RunProcess({"/bin/sh", "script"});
    EXPECT_EQ(run.exitCode, 2) << path;
    EXPECT_THAT(run.err, HasSubstr(std::string("cannot write ") + path + ": not read in time"));
  }
}

TEST_F(StuckReaderTest, DoesNotHoldUpASignal) {
  std::vector<std::string> words = LongReport();
  words.push_back("pipe");
  words.erase(words.begin(), words.begin() + 4);
  Process process(words);
  EXPECT_TRUE(Await([this] { return PipeIsFull(); }));
  kill(process.pid(), SIGTERM);
  EXPECT_EQ(process.Wait().exitCode, 128 + SIGTERM);
}

TEST_F(EarlierReportTest, WaitsForTheReaderOfAPipeAsLongAsForTheRun) {
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  const Finished run = RunProcess({"/usr/bin/timeout", "-s", "KILL", "60", AUDIO_BENCH_PROBE, "run",
                                   "Nothing", "--json", "pipe", "--timeout-s", "0.2"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("cannot write pipe: nobody reads it"));
}

}  // namespace
