#include "process/program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "process/limits.h"

namespace host {

namespace {

constexpr int kNoProgram = 127;
constexpr double kLookSeconds = 0.05;

// Both ends of a pipe that a program does not inherit.
class Pipe {
 public:
  Pipe() {
    if (pipe2(m_ends, O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    fcntl(m_ends[0], F_SETFL, O_NONBLOCK);
  }
  ~Pipe() {
    close(m_ends[0]);
    CloseWriting();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int reading() const { return m_ends[0]; }
  int writing() const { return m_ends[1]; }
  void CloseWriting() {
    if (m_ends[1] >= 0) close(m_ends[1]);
    m_ends[1] = -1;
  }

 private:
  int m_ends[2] = {-1, -1};
};

// In the child. `fault` takes the errno of a program that cannot be started.
[[noreturn]] void Become(std::vector<std::string> words, const std::string& folder, int printed,
                         int fault) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  signal(SIGPIPE, SIG_DFL);
  dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  dup2(printed, STDOUT_FILENO);
  dup2(printed, STDERR_FILENO);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  if (chdir(folder.c_str()) == 0) execvp(pointers.front(), pointers.data());
  const int error = errno;
  if (write(fault, &error, sizeof error) < 0) _exit(kNoProgram);
  _exit(kNoProgram);
}

// Takes what is there. False at the end, and where there is nothing yet.
bool TakeBytes(int from, size_t mostBytes, std::string& to) {
  char bytes[4096];
  const ssize_t count = read(from, bytes, sizeof bytes);
  if (count <= 0) return false;
  to.append(bytes, std::min(static_cast<size_t>(count), mostBytes - to.size()));
  return true;
}

// Whether a process has ended, which keeps its number until it is collected.
bool HasEnded(pid_t process) {
  siginfo_t end = {};
  const int options = WEXITED | WNOHANG | WNOWAIT;
  return waitid(P_PID, static_cast<id_t>(process), &end, options) != 0 || end.si_pid != 0;
}

std::string SecondsText(double seconds) {
  char text[32];
  snprintf(text, sizeof text, "%g s", seconds);
  return text;
}

std::string FaultOf(int status) {
  if (WIFSIGNALED(status)) {
    const int number = WTERMSIG(status);
    return "was ended by signal " + std::to_string(number) + " (" + strsignal(number) + ")";
  }
  const int code = WEXITSTATUS(status);
  return code == 0 ? "" : "ended with exit code " + std::to_string(code);
}

}  // namespace

ProgramEnd CallProgram(const ProgramCall& call, const std::function<bool()>& goOn) {
  Pipe printed;
  Pipe fault;
  const double end = Now() + call.seconds;
  const pid_t process = fork();
  if (process < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (process == 0) Become(call.words, call.folder, printed.writing(), fault.writing());
  setpgid(process, process);
  printed.CloseWriting();
  fault.CloseWriting();

  ProgramEnd result;
  while (!HasEnded(process)) {
    const bool timedOut = Now() >= end;
    if (timedOut || !goOn()) {
      result.fault = timedOut ? "did not end within " + SecondsText(call.seconds) : "was stopped";
      break;
    }
    pollfd arrival = {printed.reading(), POLLIN, 0};
    poll(&arrival, 1, static_cast<int>(kLookSeconds * 1000));
    // One that has closed its output and goes on is looked at now and then.
    if (!TakeBytes(printed.reading(), call.mostBytes, result.printed)) {
      usleep(static_cast<useconds_t>(kLookSeconds * 1e6 / 10));
    }
  }
  // Also what it has left running.
  kill(-process, SIGKILL);
  int status = 0;
  waitpid(process, &status, 0);
  if (!result.fault.empty()) return result;
  while (TakeBytes(printed.reading(), call.mostBytes, result.printed)) {
  }
  int error = 0;
  const bool refused = read(fault.reading(), &error, sizeof error) == sizeof error;
  result.fault = refused ? "cannot be run: " + std::string(strerror(error)) : FaultOf(status);
  return result;
}

}  // namespace host
