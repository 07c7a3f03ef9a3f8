// Nobody reads what the program prints: it must neither hang nor lose anything.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <utility>

#include "run/run_fixture.h"

namespace {

using nlohmann::json;

namespace fs = std::filesystem;

// A run in a folder of its own with one standard stream into a pipe that nobody reads.
class UnreadRun {
 public:
  UnreadRun(std::string folder, int stream, std::vector<std::string> words)
      : m_folder(std::move(folder)) {
    if (pipe2(m_ends, O_CLOEXEC) != 0) return;
    fs::create_directory(m_folder);
    words.insert(words.begin(), {AUDIO_BENCH_PROBE, "run"});
    words.insert(words.end(), {"--json", "report.json"});
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    m_process = fork();
    if (m_process != 0) return;
    const int nothing = open("/dev/null", O_WRONLY);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    dup2(m_ends[1], stream);
    if (chdir(m_folder.c_str()) == 0) execv(arguments[0], arguments.data());
    _exit(126);
  }
  ~UnreadRun() {
    close(m_ends[0]);
    close(m_ends[1]);
  }
  UnreadRun(const UnreadRun&) = delete;
  UnreadRun& operator=(const UnreadRun&) = delete;

  // Sends a signal when the pipe is full.
  void SignalWhenFull(int signal) const {
    pollfd takesMore = {.fd = m_ends[1], .events = POLLOUT, .revents = 0};
    for (int i = 0; i < 3000 && poll(&takesMore, 1, 0) != 0; ++i) usleep(10000);
    kill(m_process, signal);
  }

  // The exit code; -1 when it does not end within thirty seconds.
  int Wait() const {
    int status = 0;
    for (int i = 0; i < 3000; ++i) {
      usleep(10000);
      if (waitpid(m_process, &status, WNOHANG) != m_process) continue;
      return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }
    kill(m_process, SIGKILL);
    waitpid(m_process, &status, 0);
    return -1;
  }

  json Report() const { return json::parse(ReadFile(m_folder + "/report.json")); }
  std::string Log(const std::string& routine) const {
    return ReadFile(m_folder + "/bench_work/logs/" + routine + ".log");
  }

 private:
  std::string m_folder;
  int m_ends[2] = {-1, -1};
  pid_t m_process = -1;
};

// All at once, because each waits for its reader.
TEST_F(RunTest, EndsAlthoughNobodyReadsWhatItPrints) {
  const UnreadRun printed("printed", STDOUT_FILENO, {"PrintForEver", "--timeout-s", "1"});
  const UnreadRun logged("logged", STDERR_FILENO, {"LogForEver", "--timeout-s", "1"});
  const UnreadRun much("much", STDOUT_FILENO, {"PrintMuch", "12000", "--timeout-s", "1"});
  const UnreadRun terminated("terminated", STDOUT_FILENO, {"PrintForEver"});
  const UnreadRun interrupted("interrupted", STDERR_FILENO, {"LogForEver"});
  terminated.SignalWhenFull(SIGTERM);
  interrupted.SignalWhenFull(SIGINT);

  EXPECT_EQ(terminated.Wait(), 128 + SIGTERM);
  EXPECT_EQ(interrupted.Wait(), 128 + SIGINT);
  EXPECT_EQ(printed.Wait(), 4) << "at its time limit";
  EXPECT_EQ(printed.Report()["exit_code"], 4);
  EXPECT_EQ(logged.Wait(), 4) << "at its time limit";
  EXPECT_EQ(logged.Report()["exit_code"], 4);
  EXPECT_GT(logged.Log("LogForEver").size(), 65536U) << "the log is complete";

  EXPECT_EQ(much.Wait(), 2) << "results that nobody takes are no pass";
  const json report = much.Report();
  EXPECT_EQ(report["exit_code"], 2);
  EXPECT_TRUE(report["elapsed"]["value"].is_number()) << "the routine has returned";
  EXPECT_EQ(report["problems"][0]["text"],
            "what the routine printed could not be written to standard output")
      << "also when the end of the pipe has room for the report";
}

TEST_F(RunTest, GivesASlowReaderEverything) {
  const Finished run = RunProcess(
      {"/bin/sh", "-c",
       std::string("'") + AUDIO_BENCH_PROBE + "' run PrintMuch 200000 | (sleep 0.5; cat)"});
  std::string expected;
  for (int i = 0; i < 200000; ++i) expected += "line " + std::to_string(i) + "\n";
  EXPECT_EQ(run.out.substr(0, expected.size()), expected);
  EXPECT_THAT(run.out.substr(expected.size()), testing::StartsWith("pass  PrintMuch  "));
}

}  // namespace
