// Where `--json` writes, through the program itself.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "bench_process.h"
#include "report_schema.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

class ResultFileTest : public testing::Test {
 protected:
  static Finished Run(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH_PROBE, "run"});
    return RunProcess(words);
  }

  static Finished Shell(const std::string& command) {
    return RunProcess({"/bin/sh", "-c", std::string(AUDIO_BENCH_PROBE) + " " + command});
  }

  static json ReadReport(const std::string& path = "report.json") {
    return ParseReport(ReadFile(path));
  }

  // What is in the current directory.
  static std::set<std::string> Names() {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) names.insert(entry.path().filename());
    return names;
  }

  static void AwaitHang() {
    while (ReadFile("bench_work/logs/Hang.log").empty()) usleep(1000);
  }

  TemporaryDirectory m_directory;
};

TEST_F(ResultFileTest, WritesThroughASymbolicLink) {
  fs::create_directory("folder");
  WriteFile("folder/old.json", "{\n  \"schema_version\": 1}");
  fs::create_symlink("folder/old.json", "link");
  fs::create_symlink("folder/new.json", "dangling");
  fs::create_symlink("link", "second");
  for (const auto& [path, target] :
       {std::pair("link", "folder/old.json"), std::pair("dangling", "folder/new.json"),
        std::pair("second", "folder/old.json")}) {
    EXPECT_EQ(Run({"Nothing", "--json", path}).exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(path)) << path;
    EXPECT_EQ(ReadReport(target)["verdict"], "pass") << path;
  }
  fs::create_symlink("round", "round");
  EXPECT_THAT(Run({"Nothing", "--json", "round"}).err,
              HasSubstr("cannot write round: Too many levels of symbolic links"));
}

TEST_F(ResultFileTest, FollowsALinkOfSomebodyElseAsTheKernelDoes) {
  fs::create_directory("sticky");
  ASSERT_EQ(chmod("sticky", 01777), 0);
  WriteFile("report", "");
  chmod("report", 0600);
  fs::create_symlink(fs::absolute("report"), "sticky/link");
  RecordProperty("lchown", lchown("sticky/link", 65534, 65534));  // Without rights it stays ours.
  const int opened = open("sticky/link", O_WRONLY);
  const bool allowed = opened >= 0;
  if (allowed) close(opened);
  EXPECT_EQ(Run({"Nothing", "--json", "sticky/link"}).exitCode, allowed ? 0 : 2);
  EXPECT_EQ(ReadFile("report").empty(), !allowed);
}

TEST_F(ResultFileTest, FollowsNoLinkThatTheKernelDoesNotFollow) {
  WriteFile("victim", "");
  const Finished run = RunProcess({"/bin/sh", "-c",
                                   "exec unshare -rm /bin/sh -c 'mkdir m && "
                                   "mount -t tmpfs -o nosymfollow none m || exit 99; "
                                   "ln -s ../victim m/link && ln -s ../new m/dangling || exit 99; "
                                   "\"$0\" run Nothing --json m/link; \"$0\" run Nothing --json "
                                   "m/dangling' " AUDIO_BENCH_PROBE});
  if (run.err.find("m/link") == std::string::npos) GTEST_SKIP() << "no mounts here: " << run.err;
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err,
            "audio_bench: cannot write m/link: Too many levels of symbolic links\n"
            "audio_bench: cannot write m/dangling: Too many levels of symbolic links\n");
  EXPECT_EQ(ReadFile("victim"), "");
  EXPECT_FALSE(fs::exists("new"));
}

TEST_F(ResultFileTest, WritesToStandardOutputAndAllElseToStderr) {
  const Finished run = Run({"PrintAndLog", "--json", "-"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(ParseReport(run.out)["routine"], "PrintAndLog");
  EXPECT_THAT(run.err, HasSubstr("printed\n"));
  EXPECT_THAT(run.err, HasSubstr("pass  PrintAndLog  "));
  EXPECT_THAT(Names(), testing::ElementsAre("bench_work"));
}

TEST_F(ResultFileTest, TakesTheFileThatIsStandardOutputForStandardOutput) {
  EXPECT_EQ(Shell("run PrintAndLog --json /dev/stdout > out 2> err").exitCode, 0);
  EXPECT_EQ(ReadReport("out")["routine"], "PrintAndLog");
  EXPECT_THAT(ReadFile("err"), HasSubstr("printed\n"));
}

TEST_F(ResultFileTest, WritesToPipesAndDevices) {
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  EXPECT_EQ(Shell("run Nothing --json pipe > text & cat pipe > copy; wait $!").exitCode, 0);
  EXPECT_TRUE(fs::is_fifo("pipe"));
  EXPECT_EQ(ReadReport("copy")["verdict"], "pass");
  EXPECT_EQ(Run({"Nothing", "--json", "/dev/null"}).exitCode, 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(ResultFileTest, KeepsTheRightsOfTheFileThatItReplaces) {
  WriteFile("report.json", "");
  chmod("report.json", 0640);
  EXPECT_EQ(Run({"Nothing", "--json", "report.json"}).exitCode, 0);
  EXPECT_EQ(fs::status("report.json").permissions(), fs::perms(0640));
}

TEST_F(ResultFileTest, GivesANewReportTheRightsThatTheMaskLeaves) {
  for (const auto& [mask, rights] : {std::pair("000", 0666), std::pair("027", 0640)}) {
    const Finished run = RunProcess(
        {"/bin/sh", "-c",
         std::string("umask ") + mask + "; exec " AUDIO_BENCH_PROBE " run Nothing --json " + mask});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(fs::status(mask).permissions(), fs::perms(rights)) << mask;
  }
}

TEST_F(ResultFileTest, LeavesNoTemporaryFileWhateverEndsTheHost) {
  for (const int signal : {SIGKILL, SIGQUIT, SIGTERM, SIGINT, SIGHUP, SIGSEGV}) {
    fs::remove_all("bench_work");
    Process process({AUDIO_BENCH_PROBE, "run", "Hang", "--json", "report.json"});
    AwaitHang();
    kill(process.pid(), signal);
    process.Wait();
    EXPECT_THAT(Names(), testing::IsSubsetOf({"bench_work", "report.json", "core"})) << signal;
  }
}

TEST_F(ResultFileTest, LeavesNoEarlierReportWhenTheHostIsKilled) {
  EXPECT_EQ(Run({"Nothing", "--json", "report.json"}).exitCode, 0);
  EXPECT_EQ(ReadReport()["verdict"], "pass");
  Process process({AUDIO_BENCH_PROBE, "run", "Hang", "--json", "report.json"});
  AwaitHang();
  EXPECT_EQ(ReadReport()["verdict"], "error") << "already while it runs";
  kill(process.pid(), SIGKILL);
  process.Wait();
  EXPECT_EQ(ReadReport()["routine"], "Hang");
  EXPECT_EQ(ReadReport()["exit_code"], nullptr);
}

TEST_F(ResultFileTest, ReplacesAnEarlierReportByOneOfTheRunThatWasRefused) {
  WriteFile("file", "");
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"Echo", "--json", "report.json"},
                                             {"NoRoutine", "--json", "report.json"},
                                             {"Nothing", "--work", "file", "--json", "report.json"},
                                             {"Nothing", "--json=report.json", "--timeout-s", "x"},
                                             {"Nothing", "--bogus", "--json", "report.json"}}) {
    EXPECT_EQ(Run({"Nothing", "--json", "report.json"}).exitCode, 0);
    const Finished run = Run(words);
    EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(words);
    EXPECT_EQ(run.out, "");
    const json report = ReadReport();
    EXPECT_EQ(report["verdict"], "error") << testing::PrintToString(words);
    EXPECT_EQ(report["exit_code"], 2);
    EXPECT_EQ("audio_bench: " + report["reason"].get<std::string>() + "\n", run.err);
  }
  EXPECT_EQ(ParseReport(Run({"NoRoutine", "--json", "-"}).out)["exit_code"], 2);
}

TEST_F(ResultFileTest, DoesNotReplaceSomethingElseByTheReportOfARefusal) {
  WriteFile("recording", "not a report");
  EXPECT_EQ(Run({"NoRoutine", "--json", "recording"}).exitCode, 2);
  EXPECT_EQ(Run({"Nothing", "--bogus", "--json", "recording"}).exitCode, 2);
  EXPECT_EQ(ReadFile("recording"), "not a report");
}

TEST_F(ResultFileTest, RefusesWhatItCannotWriteBeforeItRuns) {
  fs::create_directory("folder");
  EXPECT_THAT(Run({"WritePcm", "--json", "folder"}).err, HasSubstr("folder: Is a directory"));
  EXPECT_THAT(Run({"WritePcm", "--json", ""}).err, StartsWith("audio_bench: --json is empty"));
  EXPECT_THAT(Run({"WritePcm", "--json="}).err, StartsWith("audio_bench: --json is empty"));
  EXPECT_THAT(Run({"WritePcm", "--work", ""}).err, StartsWith("audio_bench: --work is empty"));
  EXPECT_EQ(Run({"--json=", "WritePcm"}).exitCode, 2) << "the next word is not its value";
  EXPECT_EQ(Shell("run WritePcm --json - >&-").exitCode, 2);
  EXPECT_THAT(Names(), testing::ElementsAre("folder"));
}

TEST_F(ResultFileTest, GivesTheExitCodeOfTheProcess) {
  EXPECT_EQ(Shell("run Nothing --json report.json > /dev/full").exitCode, 2);
  EXPECT_EQ(ReadReport()["exit_code"], 2);
  EXPECT_EQ(Shell("run Crash --json report.json > /dev/full").exitCode, 4);
  EXPECT_EQ(ReadReport()["exit_code"], 4);
  EXPECT_EQ(Shell("run Helper --json report.json >&-").exitCode, 77);
  EXPECT_EQ(ReadReport()["exit_code"], 77);
}

}  // namespace
