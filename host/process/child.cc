#include "process/child.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <new>
#include <system_error>

#include "files/path_map.h"
#include "process/relay.h"
#include "process/signals.h"

namespace host {

namespace {

constexpr double kTick = 0.25;  // Seconds between two looks at the clock.

// What host and child share.
struct Shared {
  FileActivity files;
  std::atomic<bool> returned = false;  // Routine and flush are through.
};

class SharedMemory {
 public:
  SharedMemory() {
    void* const memory =
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
    m_shared = new (memory) Shared;
  }
  ~SharedMemory() { munmap(m_shared, sizeof(Shared)); }
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;
  Shared& operator*() const { return *m_shared; }

 private:
  Shared* m_shared;
};

double Now() {
  const auto time = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(time).count();
}

double ToSeconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// In the child: everything up to its end, which is where an exception that the routine lets go
// ends.
[[noreturn]] void LiveAsChild(const std::function<void()>& routine, const std::string& workspace,
                              pid_t host, Shared& shared) noexcept {
  setpgid(0, 0);  // The host ends the child together with whatever it starts.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != host) _exit(1);  // The host ended before it could be watched.
  const int nothing = open("/dev/null", O_RDONLY);
  if (nothing >= 0) dup2(nothing, STDIN_FILENO);
  if (chdir(workspace.c_str()) != 0) {
    perror(workspace.c_str());
    _exit(1);
  }

  setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  MapOpenedFiles(&shared.files);
  routine();
  const int failure = FlushOpenedFiles();  // A file that is left open is written all the same.
  int none = 0;
  if (failure != 0) shared.files.writeFailure.compare_exchange_strong(none, failure);
  shared.returned = true;
  _exit(0);
}

// In the host: a running child.
class Child {
 public:
  Child(pid_t pid, Relay& relay, const HostSignals& signals, Progress& progress)
      : m_pid(pid), m_relay(relay), m_signals(signals), m_progress(progress) {}

  // Waits for the end, which is forced when it is not there `timeout` seconds after `start`.
  ChildOutcome Watch(double start, double timeout, const Shared& shared) {
    while (!Ended()) {
      m_relay.Wait(m_signals.descriptor(), std::min(kTick, start + timeout - Now()));
      m_progress.Show(Now() - start, shared.files.opened);
      if (const int signal = m_signals.TakeInterruption()) {
        m_outcome.interruption = signal;
        Kill(ChildOutcome::End::kInterrupted);
      }
      if (Now() - start >= timeout) Kill(ChildOutcome::End::kTimedOut);
    }
    m_outcome.elapsed = Now() - start;
    m_relay.Drain();
    m_outcome.writeFailure = shared.files.writeFailure;
    Judge(shared.returned);
    return m_outcome;
  }

 private:
  void Kill(ChildOutcome::End why) {
    if (m_killed) return;
    m_killed = true;
    m_outcome.end = why;
    if (kill(-m_pid, SIGKILL) != 0) kill(m_pid, SIGKILL);  // Not yet a group of its own.
  }

  bool Ended() {
    struct rusage usage;
    const pid_t ended = wait4(m_pid, &m_status, WNOHANG, &usage);
    if (ended != m_pid) return false;
    m_outcome.cpu = ToSeconds(usage.ru_utime) + ToSeconds(usage.ru_stime);
    m_outcome.peakMemory = static_cast<uint64_t>(usage.ru_maxrss) * 1024;
    return true;
  }

  void Judge(bool returned) {
    if (m_killed) return;
    if (WIFSIGNALED(m_status)) {
      const int signal = WTERMSIG(m_status);
      m_outcome.crashSignal = signal;
      m_outcome.how = "killed by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
    } else if (!returned || WEXITSTATUS(m_status) != 0) {
      m_outcome.how = "ended its process with exit status " +
                      std::to_string(WEXITSTATUS(m_status)) + " instead of returning";
    }
    if (!m_outcome.how.empty()) m_outcome.end = ChildOutcome::End::kCrashed;
  }

  pid_t m_pid;
  Relay& m_relay;
  const HostSignals& m_signals;
  Progress& m_progress;
  ChildOutcome m_outcome;
  bool m_killed = false;
  int m_status = 0;
};

}  // namespace

ChildOutcome RunInChild(const std::function<void()>& routine, const std::string& workspace,
                        double timeout, FILE* log, Progress& progress) {
  const SharedMemory shared;
  Relay relay(log, progress);
  const HostSignals signals;
  fflush(nullptr);  // What is still buffered here must not come out of the child as well.
  const pid_t host = getpid();
  const double start = Now();
  const pid_t pid = fork();
  if (pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid == 0) {
    signals.RestoreInChild();
    relay.BecomeChild();
    LiveAsChild(routine, workspace, host, *shared);
  }
  relay.BecomeHost();
  return Child(pid, relay, signals, progress).Watch(start, timeout, *shared);
}

}  // namespace host
