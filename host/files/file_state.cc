#include "files/file_state.h"

#include <time.h>
#include <unistd.h>

#include <cstdint>

namespace host {

namespace {

bool Same(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

FileState::FileState(const std::string& path) {
  struct stat status;
  if (!path.empty() && stat(path.c_str(), &status) == 0) m_status = status;
}

FileState::FileState(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) == 0) m_status = status;
}

// A file system dates changes by a clock that ticks a few hundred times a second; by whole seconds
// where it has no room for more, some (FAT) by even ones. A file that was written in this very tick
// would look untouched if it were written again in it. A date that is further ahead was given while
// the clock was set otherwise, and no change from now on gets it.
bool FileState::MayBeDatedAlikeAt(const timespec& now) const {
  if (!m_status) return false;
  constexpr int64_t kTickNanoseconds = 20'000'000;  // At least; of every kernel.
  const timespec& changed = m_status->st_ctim;
  const int64_t seconds = changed.tv_sec - now.tv_sec;
  if (HasWholeSeconds()) {
    const int64_t unit = changed.tv_sec % 2 == 0 && m_status->st_mtim.tv_sec % 2 == 0 ? 2 : 1;
    return seconds > -unit && seconds <= 1;
  }
  if (seconds < -1 || seconds > 1) return false;
  const int64_t ahead = seconds * 1'000'000'000 + changed.tv_nsec - now.tv_nsec;
  return ahead >= 0 && ahead <= kTickNanoseconds;
}

void FileState::WaitForClockTick() const {
  // The wait has a limit, should the clock be set back again and again.
  const int mostMilliseconds = HasWholeSeconds() ? 4100 : 50;
  for (int i = 0; i < mostMilliseconds; ++i) {
    timespec now;
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    if (!MayBeDatedAlikeAt(now)) return;
    usleep(1000);
  }
}

// On a file system with a finer clock dates are whole seconds by chance once in a thousand years.
bool FileState::HasWholeSeconds() const {
  return m_status && m_status->st_ctim.tv_nsec == 0 && m_status->st_mtim.tv_nsec == 0;
}

bool FileState::SameContent(const FileState& later) const {
  if (!m_status || !later.m_status) return !m_status && !later.m_status;
  const struct stat& a = *m_status;
  const struct stat& b = *later.m_status;
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         Same(a.st_mtim, b.st_mtim);
}

bool FileState::Untouched(const FileState& later) const {
  return SameContent(later) && (!m_status || Same(m_status->st_ctim, later.m_status->st_ctim));
}

}  // namespace host
