#include "files/file_state.h"

#include <time.h>
#include <unistd.h>

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

// A file system dates changes by a clock that ticks a few hundred times a second. A file that was
// written in this very tick would look untouched if it were written again in it.
void FileState::WaitForClockTick() const {
  if (!m_status) return;
  const timespec& changed = m_status->st_ctim;
  for (int i = 0; i < 50; ++i) {  // For a file from the future there is no use in waiting.
    timespec now;
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    if (now.tv_sec > changed.tv_sec) return;
    if (now.tv_sec == changed.tv_sec && now.tv_nsec > changed.tv_nsec) return;
    usleep(1000);
  }
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
