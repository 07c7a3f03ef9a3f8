#include "process/keeper.h"

#include <dirent.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "process/limits.h"

namespace host {

namespace {

constexpr double kMaxSeconds = 2;  // For what cannot be ended, because it waits for a device.

double ToSeconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Returns the parent of a process; 0 when it cannot be known.
pid_t Parent(const char* process) {
  char name[64];
  snprintf(name, sizeof name, "/proc/%.20s/stat", process);
  FILE* const file = fopen(name, "re");
  if (file == nullptr) return 0;
  char line[512] = {};
  const size_t length = fread(line, 1, sizeof line - 1, file);
  fclose(file);
  // "123 (a name with any letters) S 122 ..."
  const char* const name_end = length > 0 ? strrchr(line, ')') : nullptr;
  int parent = 0;
  if (name_end == nullptr || sscanf(name_end, ") %*c %d", &parent) != 1) return 0;
  return parent;
}

void KillChildren() {
  DIR* const processes = opendir("/proc");
  if (processes == nullptr) return;
  while (const dirent* const entry = readdir(processes)) {
    const int process = atoi(entry->d_name);
    if (process > 0 && Parent(entry->d_name) == getpid()) kill(process, SIGKILL);
  }
  closedir(processes);
}

class Keeper {
 public:
  Keeper(pid_t routine, KeeperReport& report) : m_routine(routine), m_report(report) {}

  // Takes note of the children that have ended, or were stopped. Returns false when there are none
  // left.
  bool Reap() {
    int status = 0;
    rusage usage;
    pid_t ended = 0;
    while ((ended = wait4(-1, &status, WNOHANG | WUNTRACED | WCONTINUED, &usage)) > 0) {
      if (ended != m_routine) continue;
      m_report.stopSignal = WIFSTOPPED(status) ? WSTOPSIG(status) : 0;
      if (WIFSTOPPED(status) || WIFCONTINUED(status)) continue;
      m_report.status = status;
      m_report.time = Now();
      m_report.cpu = ToSeconds(usage.ru_utime) + ToSeconds(usage.ru_stime);
      m_report.peakMemory = static_cast<uint64_t>(usage.ru_maxrss) * 1024;
      m_report.ended = true;
    }
    return ended == 0;
  }

  // Children of a process that is killed become children of the keeper, and are killed then.
  void EndAll() {
    const double start = Now();
    kill(-m_routine, SIGKILL);  // All that is in its group at once; needs no /proc.
    while (Reap() && Now() - start < kMaxSeconds) {
      KillChildren();
      usleep(1000);
    }
  }

 private:
  pid_t m_routine;
  KeeperReport& m_report;
};

}  // namespace

void LiveAsKeeper(const std::function<void()>& routine, pid_t host, KeeperReport& report) {
  sigset_t before;
  sigset_t awaited;
  sigemptyset(&awaited);
  sigaddset(&awaited, SIGCHLD);
  sigaddset(&awaited, SIGTERM);
  sigset_t all;
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, &before);
  setpgid(0, 0);  // What a terminal sends is for the host.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != host) _exit(1);  // The host ended before it could be watched.

  const pid_t keeper = getpid();
  const pid_t child = fork();
  if (child < 0) _exit(1);
  if (child == 0) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != keeper) _exit(1);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    routine();
    _exit(0);
  }
  setpgid(child, child);  // Also here, so that it is done before the group is needed.
  close_range(0, ~0U, 0);

  Keeper watch(child, report);
  int signal = 0;
  while (watch.Reap() && !report.ended && signal != SIGTERM) {
    sigwait(&awaited, &signal);
  }
  watch.EndAll();
  _exit(0);
}

}  // namespace host
