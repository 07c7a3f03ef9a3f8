// Nobody reads what the program prints: it must neither hang nor lose anything.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "run/run_fixture.h"

namespace {

using nlohmann::json;

class UnreadOutputTest : public RunTest {
 protected:
  // Runs with one standard stream into a pipe that nobody reads, sends a signal after a second when
  // it is not 0, and returns the exit code; -1 when it does not end within ten seconds.
  static int RunUnread(int stream, const std::vector<std::string>& words, int signal) {
    int ends[2];
    if (pipe(ends) != 0) return -1;
    const pid_t process = fork();
    if (process == 0) {
      const int nothing = open("/dev/null", O_WRONLY);
      dup2(nothing, STDOUT_FILENO);
      dup2(nothing, STDERR_FILENO);
      dup2(ends[1], stream);
      close(ends[0]);
      close(ends[1]);
      std::vector<std::string> command = Command(words);
      std::vector<char*> arguments;
      for (std::string& word : command) arguments.push_back(word.data());
      arguments.push_back(nullptr);
      execv(arguments[0], arguments.data());
      _exit(126);
    }
    close(ends[1]);
    int status = 0;
    for (int i = 0; i < 100; ++i) {
      usleep(100000);
      if (i == 10 && signal != 0) kill(process, signal);
      if (waitpid(process, &status, WNOHANG) != process) continue;
      close(ends[0]);
      return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }
    kill(process, SIGKILL);
    waitpid(process, &status, 0);
    close(ends[0]);
    return -1;
  }
};

TEST_F(UnreadOutputTest, TheTimeLimitEndsTheRun) {
  const std::vector<std::string> limit = {"--timeout-s", "1", "--json", "report.json"};
  for (const auto& [stream, routine] :
       {std::pair(STDOUT_FILENO, "PrintForEver"), std::pair(STDERR_FILENO, "LogForEver")}) {
    std::vector<std::string> words = {routine};
    words.insert(words.end(), limit.begin(), limit.end());
    EXPECT_EQ(RunUnread(stream, words, 0), 4) << routine;
    EXPECT_EQ(json::parse(ReadFile("report.json"))["exit_code"], 4) << routine;
  }
}

TEST_F(UnreadOutputTest, ASignalEndsTheRun) {
  EXPECT_EQ(RunUnread(STDOUT_FILENO, {"PrintForEver"}, SIGTERM), 128 + SIGTERM);
  EXPECT_EQ(RunUnread(STDERR_FILENO, {"LogForEver"}, SIGINT), 128 + SIGINT);
}

TEST_F(UnreadOutputTest, ResultsThatNobodyTakesAreNoPass) {
  EXPECT_EQ(RunUnread(STDOUT_FILENO,
                      {"PrintMuch", "12000", "--timeout-s", "1", "--json", "report.json"}, 0),
            2);
  const json report = json::parse(ReadFile("report.json"));
  EXPECT_EQ(report["exit_code"], 2);
  EXPECT_TRUE(report["elapsed"]["value"].is_number()) << "the routine has returned";
  EXPECT_EQ(report["problems"][0]["text"],
            "what the routine printed could not be written to standard output")
      << "also when the end of the pipe has room for the report";
}

TEST_F(UnreadOutputTest, TheLogIsCompleteAlthoughNobodyReadsIt) {
  EXPECT_EQ(RunUnread(STDERR_FILENO, {"LogForEver", "--timeout-s", "1"}, 0), 4);
  EXPECT_GT(ReadFile("bench_work/logs/LogForEver.log").size(), 65536U);
}

TEST_F(UnreadOutputTest, ASlowReaderGetsEverything) {
  const Finished run = RunProcess(
      {"/bin/sh", "-c",
       std::string("'") + AUDIO_BENCH_PROBE + "' run PrintMuch 200000 | (sleep 0.5; cat)"});
  std::string expected;
  for (int i = 0; i < 200000; ++i) expected += "line " + std::to_string(i) + "\n";
  EXPECT_EQ(run.out.substr(0, expected.size()), expected);
  EXPECT_THAT(run.out.substr(expected.size()), testing::StartsWith("pass  PrintMuch  "));
}

}  // namespace
