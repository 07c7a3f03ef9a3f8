#include "compare/bench_suites.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/usage_error.h"
#include "process/signals.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr int kNoProgram = 127;

[[noreturn]] void Become(const HostSignals& signals, std::vector<std::string> command,
                         PrintsTo prints) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  signals.RestoreInChild();
  if (prints == PrintsTo::kNowhere) dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  std::vector<char*> words;
  for (std::string& word : command) words.push_back(word.data());
  words.push_back(nullptr);
  execvp(words.front(), words.data());
  _exit(kNoProgram);
}

// How a program ended, as wait tells it. A request to end this process is handed on to it.
int RunProgram(const std::vector<std::string>& command, PrintsTo prints, int& interruption) {
  const HostSignals signals;
  const pid_t process = fork();
  if (process < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (process == 0) Become(signals, command, prints);
  int status = 0;
  while (waitpid(process, &status, WNOHANG) == 0) {
    pollfd arrival = {signals.descriptor(), POLLIN, 0};
    poll(&arrival, 1, -1);
    if (const int request = signals.TakeInterruption(); request != 0) {
      interruption = request;
      kill(process, request);
    }
  }
  return status;
}

}  // namespace

int RunSuiteBy(const SuiteBench& bench, const std::vector<std::string>& words,
               const std::string& folder, PrintsTo prints) {
  const std::string on = bench.engine.empty() ? "" : " on the engine " + bench.engine;
  std::vector<std::string> command = {bench.program, "suite"};
  command.insert(command.end(), words.begin(), words.end());
  if (!bench.engine.empty()) command.insert(command.end(), {"--engine", bench.engine});
  command.insert(command.end(), {"--out", folder});
  int interruption = 0;
  const int status = RunProgram(command, prints, interruption);
  if (interruption != 0) return interruption;
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNoProgram) {
    throw UsageError{"cannot run " + bench.program};
  }
  std::error_code error;
  if (fs::exists(folder + "/results.json", error)) return 0;
  const std::string end = WIFEXITED(status)
                              ? "exit code " + std::to_string(WEXITSTATUS(status))
                              : std::string("killed by ") + strsignal(WTERMSIG(status));
  throw UsageError{bench.program + " suite" + on + " has left no results (" + end + ")"};
}

BenchSuites::BenchSuites(const std::vector<SuiteBench>& benches,
                         const std::vector<std::string>& words, const std::string& out)
    : m_out(out) {
  if (out.empty()) {
    m_temporary = std::make_unique<TemporaryWorkspace>();
    m_out = m_temporary->path();
  }
  const std::string folders[] = {a(), b()};
  for (size_t i = 0; i < 2; ++i) {
    const int interruption = RunSuiteBy(benches[i], words, folders[i], PrintsTo::kStderr);
    if (interruption == 0) continue;
    m_temporary.reset();
    raise(interruption);  // Who has interrupted it wants to see its end.
  }
}

void BenchSuites::EndTemporary(bool keep) {
  if (!m_temporary) return;
  if (keep) m_temporary->Keep();
  fprintf(stderr, keep ? "kept  %s/a and b\n" : "removed  %s (--out DIR keeps both results)\n",
          m_out.c_str());
}

}  // namespace host
