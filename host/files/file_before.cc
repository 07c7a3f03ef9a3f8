#include "files/file_before.h"

#include <time.h>

#include "files/fingerprint.h"

namespace host {

FileBefore::FileBefore(const std::string& path)
    : m_path(path), m_state(path), m_fingerprint(WasThere() ? Fingerprint(path) : 0) {
  if (Bytes() > kMaxWhole) m_state.WaitForClockTick();
  timespec now;
  clock_gettime(CLOCK_REALTIME_COARSE, &now);
  m_datesTell = !m_state.HasWholeSeconds() && !m_state.MayBeDatedAlikeAt(now);
}

void FileBefore::WaitUntilDatesTell() {
  m_state.WaitForClockTick();
  m_datesTell = !m_state.HasWholeSeconds();
}

uint64_t FileBefore::Bytes() const {
  return WasThere() ? static_cast<uint64_t>(m_state.status()->st_size) : 0;
}

bool FileBefore::IsSameNow() const {
  const FileState now(m_path);
  if (!m_state.SameContent(now)) return false;
  return (m_datesTell && m_state.Untouched(now)) || m_fingerprint == Fingerprint(m_path);
}

}  // namespace host
