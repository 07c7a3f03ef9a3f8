#include "process/child.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <system_error>

#include "files/path_map.h"
#include "process/crash_calls.h"
#include "process/crash_stack.h"
#include "process/keeper.h"
#include "process/relay.h"

namespace host {

namespace {

constexpr double kTick = 0.25;        // Seconds between two looks at the clock.
constexpr double kKeeperSeconds = 5;  // After which a keeper that does not end is killed.

// What the host, the keeper and the routine's process share.
struct Shared {
  FileActivity files;
  KeeperReport keeper;
  CrashCalls crash;
  EngineFindings findings;             // Complete once all is done.
  std::atomic<double> routineEnd = 0;  // When the routine returned, see Now(); 0 for not yet.
  std::atomic<bool> returned = false;  // All is done, and the files are flushed.
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

// Lives as the routine's process: does everything up to its end, which is where an exception that
// the routine lets go ends.
[[noreturn]] void LiveAsChild(const ChildWork& work, const std::string& workspace,
                              Shared& shared) noexcept {
  const int nothing = open("/dev/null", O_RDONLY);
  if (nothing >= 0) dup2(nothing, STDIN_FILENO);
  if (chdir(workspace.c_str()) != 0) {
    perror(workspace.c_str());
    _exit(1);
  }

  // A crash is a verdict; a core dump of it would stay in the workspace.
  rlimit core = {};
  getrlimit(RLIMIT_CORE, &core);
  core.rlim_cur = 0;
  setrlimit(RLIMIT_CORE, &core);

  setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  MapOpenedFiles(&shared.files);
  NoteCrashes(&shared.crash);
  work.routine();
  shared.routineEnd = Now();
  shared.findings = work.afterwards();
  FlushOpenedFiles();  // A file that is left open is written all the same.
  shared.returned = true;
  _exit(0);
}

FileProblem ToProblem(const FileFault* fault) {
  return fault == nullptr ? FileProblem() : FileProblem{fault->error, fault->name};
}

// "signal 6 (Aborted)"
std::string Signal(int number) {
  return "signal " + std::to_string(number) + " (" + strsignal(number) + ")";
}

// A running child as the host sees it, by way of its keeper.
class Child {
 public:
  Child(pid_t keeper, Relay& relay, Limits& limits, Progress& progress)
      : m_keeper(keeper), m_relay(relay), m_limits(limits), m_progress(progress) {}

  // Waits for the end, which is forced when the limits are reached.
  ChildOutcome Watch(double start, const Shared& shared) {
    while (!Ended()) {
      m_relay.Wait(m_limits.signals().descriptor(), std::min(kTick, m_limits.Left()));
      m_progress.Show(Now() - start, shared.files);
      const Limits::Stop stop = m_limits.Check();
      if (stop == Limits::Stop::kTimedOut && m_killed == 0) {
        m_outcome.stopSignal = shared.keeper.stopSignal;
      }
      if (stop == Limits::Stop::kInterrupted) Kill(ChildOutcome::End::kInterrupted);
      if (stop == Limits::Stop::kTimedOut) Kill(ChildOutcome::End::kTimedOut);
      if (stop == Limits::Stop::kNone && m_killed != 0) Kill(m_outcome.end);
    }
    const double end = shared.keeper.ended ? shared.keeper.time : Now();
    const double routineEnd = shared.routineEnd > 0 ? shared.routineEnd.load() : end;
    m_outcome.elapsed = routineEnd - start;
    m_outcome.ranOn = end - routineEnd;
    if (shared.keeper.ended) {
      m_outcome.cpu = shared.keeper.cpu;
      m_outcome.peakMemory = shared.keeper.peakMemory;
    }
    if (shared.returned) TakeFindings(shared.findings, m_outcome);
    m_outcome.interruption = m_limits.interruption();
    TakeFaults(shared.files, m_outcome);
    Judge(shared);
    return m_outcome;
  }

 private:
  void Kill(ChildOutcome::End why) {
    if (m_killed == 0) {
      m_outcome.end = why;
      m_killed = Now();
      kill(m_keeper, SIGTERM);
    } else if (Now() - m_killed > kKeeperSeconds) {
      kill(m_keeper, SIGKILL);
    }
    usleep(1000);  // The limits do not make anybody wait any more.
  }

  // Returns whether the keeper has ended. One that was stopped watches nothing any more: it is told
  // to end.
  bool Ended() {
    int status = 0;
    if (waitpid(m_keeper, &status, WNOHANG | WUNTRACED) != m_keeper) return false;
    if (!WIFSTOPPED(status)) return true;
    if (m_killed == 0) {
      m_outcome.how = "the process that watches it was stopped by " + Signal(WSTOPSIG(status));
      Kill(ChildOutcome::End::kCrashed);
    }
    kill(m_keeper, SIGCONT);
    return false;
  }

  void Judge(const Shared& shared) {
    if (m_killed != 0) return;
    const int status = shared.keeper.status;
    if (!shared.keeper.ended) {
      m_outcome.how = "its process could not be started, or watched to its end";
    } else if (WIFSIGNALED(status)) {
      const int signal = WTERMSIG(status);
      m_outcome.crashSignal = signal;
      m_outcome.how = "killed by " + Signal(signal);
    } else if (!shared.returned || WEXITSTATUS(status) != 0) {
      m_outcome.how = "ended its process with exit status " + std::to_string(WEXITSTATUS(status)) +
                      " instead of returning";
    }
    if (!m_outcome.how.empty()) m_outcome.end = ChildOutcome::End::kCrashed;
  }

  pid_t m_keeper;
  Relay& m_relay;
  Limits& m_limits;
  Progress& m_progress;
  ChildOutcome m_outcome;
  double m_killed = 0;  // When; 0 for not yet.
};

// The end of the log of a routine that has crashed; empty for others.
std::string LastWords(const ChildOutcome& outcome, const CrashCalls& noted) {
  if (outcome.crashSignal == 0 || noted.count == 0) return "";
  return "stack of " + Signal(outcome.crashSignal) + ":\n" + CrashStack(noted);
}

}  // namespace

void TakeFindings(const EngineFindings& findings, ChildOutcome& outcome) {
  outcome.deviceGaps = findings.gaps;
  for (size_t i = 0; i < findings.refusedCount; ++i) {
    const auto& [name, reason] = findings.refused[i];
    outcome.refusals.push_back({PlaceInWorkspace(name).value_or(""), reason});
  }
  for (size_t i = 0; i < findings.lineCount; ++i) {
    outcome.engineLines.emplace_back(findings.lines[i]);
  }
}

void TakeFaults(const FileActivity& files, ChildOutcome& outcome) {
  outcome.writeFault = ToProblem(files.writeFault.Get());
  outcome.readFault = ToProblem(files.readFault.Get());
  const size_t count = std::min<size_t>(files.openFaultCount, FileActivity::kMaxOpenFaults);
  for (size_t i = 0; i < count; ++i) {
    outcome.openFaults.push_back(ToProblem(&files.openFaults[i]));
  }
  for (size_t i = 0; i < std::min<size_t>(files.readCount, FileActivity::kMaxReads); ++i) {
    outcome.reads.push_back({files.reads[i].place, files.reads[i].bytes});
  }
}

ChildOutcome RunInChild(const ChildWork& work, const std::string& workspace, Limits& limits,
                        FILE* log, const Hearing& hearing, Progress& progress) {
  const SharedMemory shared;
  Relay relay(log, hearing, progress);
  fflush(nullptr);  // What is still buffered here must not come out of the child as well.
  const pid_t host = getpid();
  const double start = Now();
  const pid_t keeper = fork();
  if (keeper < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (keeper == 0) {
    const auto child = [&] {
      limits.signals().RestoreInChild();
      relay.BecomeChild();
      LiveAsChild(work, workspace, *shared);
    };
    LiveAsKeeper(child, host, (*shared).keeper);
  }
  relay.BecomeHost();
  ChildOutcome outcome = Child(keeper, relay, limits, progress).Watch(start, *shared);
  outcome.delivered = relay.Drain(limits, LastWords(outcome, (*shared).crash));
  outcome.logFault = relay.logFailure();
  return outcome;
}

}  // namespace host
