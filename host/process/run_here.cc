#include "process/run_here.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "files/path_map.h"

namespace host {

namespace {

double CpuSeconds() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The current directory, which is another one until the end of this object.
class Inside {
 public:
  explicit Inside(const std::string& folder)
      : m_before(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (m_before >= 0 && chdir(folder.c_str()) == 0) return;
    const int error = errno;
    if (m_before >= 0) close(m_before);
    throw std::system_error(error, std::generic_category(), folder);
  }
  ~Inside() {
    if (fchdir(m_before) != 0) perror("audio_bench: the current directory");
    close(m_before);
  }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;

 private:
  int m_before;
};

// An exception that the routine lets go ends the process where it is thrown, as it does in a
// process of its own.
void Call(const std::function<void()>& routine) noexcept { routine(); }

}  // namespace

ChildOutcome RunHere(const ChildWork& work, const std::string& workspace,
                     const HostSignals& signals) {
  static auto* const files = new FileActivity;  // Files may be closed as the process ends.
  const Inside inside(workspace);
  signals.RestoreInChild();
  MapOpenedFiles(files);
  ChildOutcome outcome;
  const double cpu = CpuSeconds();
  const double start = Now();
  Call(work.routine);
  outcome.elapsed = Now() - start;
  TakeFindings(work.afterwards(), outcome);
  outcome.ranOn = Now() - start - outcome.elapsed;
  outcome.cpu = CpuSeconds() - cpu;
  FlushOpenedFiles();
  StopMapping();
  TakeFaults(*files, outcome);
  signal(SIGPIPE, SIG_IGN);  // From here on it is the host that writes.
  return outcome;
}

}  // namespace host
