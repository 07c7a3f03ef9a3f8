// Suites that are ended from outside, gone on with, and put together from shards.

#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <thread>

#include "suite_fixture.h"

namespace {

using testing::HasSubstr;

class ResumeTest : public SuiteTest {
 protected:
  static std::string ManyCases() {
    std::string cases;
    for (int i = 0; i < 12; ++i) cases += Case("pcm-" + std::to_string(i), "WritePcm");
    cases += Case("bytes", "WriteBytes", "arguments = [\"320\"]");
    cases += Case("copy", "Copy", "arguments = [\"out.pcm\", \"b.pcm\"]\nafter = [\"bytes\"]");
    cases += Case("bad", "WriteNothing", "known = \"it does\"");
    for (int i = 0; i < 6; ++i) {
      cases += Case("on-" + std::to_string(i), "WorkOn", "arguments = [\"30\"]");
    }
    return cases;
  }

  // How many lines a suite that runs has written of what has ended.
  static size_t EndedCases() {
    if (!std::filesystem::exists("r/cases.jsonl")) return 0;
    const std::string lines = ReadFile("r/cases.jsonl");
    return static_cast<size_t>(std::count(lines.begin(), lines.end(), '\n'));
  }

  static std::string LogOf(const std::string& id) {
    return ReadFile("r/cases/" + id + "/logs/Hang.log");
  }
};

TEST_F(ResumeTest, KeepsWhatHasPassedAndRunsTheRestAgain) {
  WriteFile("s.toml",
            Case("good", "WriteItsProcess") + Case("bad", "ReadAll", "arguments = [\"/x.in\"]"));
  EXPECT_EQ(Suite({"s.toml", "--out", "r"}).exitCode, 3);
  const std::string first = ReadFile("r/cases/good/pid");
  const Finished again = Suite({"s.toml", "--out", "r", "--resume"});
  EXPECT_EQ(again.exitCode, 3);
  EXPECT_EQ(ReadFile("r/cases/good/pid"), first);
  EXPECT_THAT(again.out, Not(HasSubstr("pass  good")));
  EXPECT_THAT(again.out, HasSubstr("error bad"));
  EXPECT_EQ(Results("r")["counts"]["pass"], 1);
}

TEST_F(ResumeTest, RunsAgainWhatIsDeclaredOtherwise) {
  WriteFile("s.toml", Case("a", "WriteItsProcess"));
  EXPECT_EQ(Suite({"s.toml", "--out", "r"}).exitCode, 0);
  const std::string first = ReadFile("r/cases/a/pid");

  // What is said about a case does not run it again.
  WriteFile("s.toml", Case("before", "Nothing") + Case("a", "WriteItsProcess", "tags = [\"t\"]"));
  EXPECT_EQ(Suite({"s.toml", "--out", "r", "--resume"}).exitCode, 0);
  EXPECT_EQ(ReadFile("r/cases/a/pid"), first);
  EXPECT_EQ(Results("r")["cases"][1]["tags"][0], "t");
  EXPECT_EQ(Results("r")["cases"][1]["index"], 1);

  WriteFile("s.toml", Case("a", "WriteItsProcess", "timeout_s = 60"));
  EXPECT_EQ(Suite({"s.toml", "--out", "r", "--resume"}).exitCode, 0);
  EXPECT_NE(ReadFile("r/cases/a/pid"), first);
  EXPECT_EQ(Results("r")["cases"].size(), 1u);
}

TEST_F(ResumeTest, AfterKillsAtAnyMomentTheResultsAreThoseOfAnUndisturbedRun) {
  WriteFile("s.toml", ManyCases());
  ASSERT_EQ(Suite({"s.toml", "--out", "whole"}).exitCode, 0);
  siginfo_t ended = {};
  unsigned moment = 12345;
  for (int i = 0; i < 20; ++i) {
    const size_t before = EndedCases();
    Process suite(Command({"suite", "s.toml", "--out", "r", "--resume"}));
    moment = moment * 1103515245 + 12345;
    // Up to two cases later, so that kills fall everywhere however slow the machine is.
    const size_t more = moment / 65536 % 3;
    while (EndedCases() < before + more &&
           waitid(P_PID, static_cast<id_t>(suite.pid()), &ended, WEXITED | WNOWAIT | WNOHANG) ==
               0 &&
           ended.si_pid == 0) {
      usleep(1000);
    }
    usleep(moment / 262144 % 20000);
    kill(suite.pid(), SIGKILL);
    suite.Wait();
  }
  ASSERT_EQ(Suite({"s.toml", "--out", "r", "--resume"}).exitCode, 0);
  EXPECT_EQ(Timeless("r"), Timeless("whole"));
}

TEST_F(ResumeTest, ALastLineThatIsNotWholeIsNotThere) {
  WriteFile("s.toml", Case("a", "WritePcm") + Case("b", "WritePcm"));
  ASSERT_EQ(Suite({"s.toml", "--out", "r"}).exitCode, 0);
  const std::string lines = ReadFile("r/cases.jsonl");
  WriteFile("r/cases.jsonl", lines.substr(0, lines.size() - 10));
  EXPECT_EQ(Suite({"s.toml", "--out", "r", "--resume"}).exitCode, 0);
  EXPECT_EQ(Verdicts("r"), "pass pass");
  WriteFile("r/cases.jsonl", "torn\n" + lines);
  const Finished suite = Suite({"s.toml", "--out", "r", "--resume"});
  EXPECT_EQ(suite.exitCode, 2);
  EXPECT_EQ(suite.err, "audio_bench: r/cases.jsonl:1: not a line of a suite's results\n");
}

TEST_F(ResumeTest, ASecondSuiteInTheSameFolderIsRefused) {
  WriteFile("s.toml", Case("a", "Hang"));
  Process first(Command({"suite", "s.toml", "--out", "r"}));
  while (LogOf("a").empty()) usleep(1000);
  const Finished second = Suite({"s.toml", "--out", "r", "--resume"});
  EXPECT_EQ(second.exitCode, 2);
  EXPECT_EQ(second.err, "audio_bench: the folder r is in use by another suite, process " +
                            std::to_string(first.pid()) + "\n");
  kill(first.pid(), SIGTERM);
  EXPECT_EQ(first.Wait().exitCode, 128 + SIGTERM);
}

TEST_F(ResumeTest, AnInterruptEndsTheCasesAndWritesTheResults) {
  WriteFile("s.toml", Case("good", "WritePcm") + Case("a", "Hang", "after = [\"good\"]") +
                          Case("b", "WritePcm", "after = [\"a\"]"));
  Process suite(Command({"suite", "s.toml", "--out", "r"}));
  while (LogOf("a").empty()) usleep(1000);
  const pid_t routine = std::stoi(ReadFile("r/cases/a/pid"));
  kill(suite.pid(), SIGINT);
  const Finished ended = suite.Wait();
  EXPECT_EQ(ended.exitCode, 130);
  EXPECT_EQ(kill(routine, 0), -1);
  EXPECT_EQ(Verdicts("r"), "pass not_run not_run");
  EXPECT_EQ(Results("r")["counts"]["not_run"], 2);
  EXPECT_THAT(ended.out, HasSubstr("1 passed, 0 failed, 0 skipped, 2 not run\n"));
}

TEST_F(ResumeTest, ShardsPutTogetherAreOneRun) {
  WriteFile("s.toml", ManyCases());
  ASSERT_EQ(Suite({"s.toml", "--out", "whole"}).exitCode, 0);
  std::vector<std::string> merge = {"merge"};
  size_t cases = 0;
  for (const char* const index : {"3", "1", "2"}) {
    const std::string folder = std::string("shards/") + index;
    EXPECT_EQ(Suite({"s.toml", "--shard", std::string(index) + "/3", "--out", folder}).exitCode, 0);
    cases += Results(folder)["cases"].size();
    EXPECT_EQ(Results(folder)["shard"]["of"], 3);
    merge.push_back(folder);
  }
  EXPECT_EQ(cases, 21u);
  merge.insert(merge.end(), {"--out", "all"});
  const Finished merged = RunProcess(Command(merge));
  EXPECT_EQ(merged.exitCode, 0) << merged.err;
  // The files are where the shards have left them.
  nlohmann::json all = Timeless("all");
  nlohmann::json whole = Timeless("whole");
  for (nlohmann::json* const results : {&all, &whole}) {
    for (nlohmann::json& each : (*results)["cases"]) {
      const std::string folder = results == &all ? "all/" : "whole/";
      EXPECT_TRUE(std::filesystem::exists(folder + each["report"].get<std::string>()));
      each.erase("report");
      for (nlohmann::json& output : each["outputs"]) {
        EXPECT_TRUE(std::filesystem::exists(folder + output["path"].get<std::string>()));
        output.erase("path");
      }
    }
  }
  EXPECT_EQ(all, whole);
}

TEST_F(ResumeTest, ShardsThatDoNotFitAreRefused) {
  WriteFile("s.toml", ManyCases());
  ASSERT_EQ(Suite({"s.toml", "--shard", "1/2", "--out", "a"}).exitCode, 0);
  ASSERT_EQ(Suite({"s.toml", "--shard", "2/2", "--out", "b"}).exitCode, 0);
  ASSERT_EQ(Suite({"s.toml", "pcm-1", "--shard", "2/2", "--out", "other"}).exitCode, 0);
  ASSERT_EQ(Suite({"s.toml", "pcm-1", "--out", "whole"}).exitCode, 0);
  const auto merge = [](std::vector<std::string> folders) {
    folders.insert(folders.begin(), "merge");
    folders.insert(folders.end(), {"--out", "m"});
    const Finished merged = RunProcess(Command(folders));
    EXPECT_EQ(merged.exitCode, 2);
    return merged.err;
  };
  EXPECT_EQ(merge({"a"}), "audio_bench: shard 2 of 2 is missing\n");
  EXPECT_EQ(merge({"a", "b", "a"}), "audio_bench: shard 1 of 2 is there twice: a and a\n");
  EXPECT_EQ(merge({"a", "other"}), "audio_bench: other is a shard of another suite than a\n");
  EXPECT_EQ(merge({"whole"}), "audio_bench: whole is no shard: it holds a whole suite\n");
  EXPECT_THAT(merge({"none"}), HasSubstr("none holds no results of a suite"));
  EXPECT_FALSE(std::filesystem::exists("m"));
}

TEST_F(ResumeTest, AnEmptyShardPasses) {
  WriteFile("s.toml", Case("a", "WritePcm"));
  int empty = 0;
  for (const char* const shard : {"1/2", "2/2"}) {
    const std::string folder = std::string("shard") + shard[0];
    EXPECT_EQ(Suite({"s.toml", "--shard", shard, "--out", folder}).exitCode, 0);
    empty += Results(folder)["cases"].empty() ? 1 : 0;
  }
  EXPECT_EQ(empty, 1);
}

}  // namespace
