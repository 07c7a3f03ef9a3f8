#include "files/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace host {

NewFile::NewFile(int folder, std::string name, mode_t mode)
    : m_folder(folder), m_name(std::move(name)) {
  m_descriptor = openat(m_folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode);
  m_nameless = m_descriptor >= 0;
  if (m_nameless) return;
  m_ownName = m_name + "." + std::to_string(getpid());
  unlinkat(m_folder, m_ownName.c_str(), 0);  // Of a process that had this number and was killed.
  const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  m_descriptor = openat(m_folder, m_ownName.c_str(), flags, mode);
  if (m_descriptor < 0) m_ownName.clear();
}

NewFile::~NewFile() {
  if (!m_ownName.empty()) unlinkat(m_folder, m_ownName.c_str(), 0);
  if (m_descriptor >= 0) close(m_descriptor);
}

bool NewFile::Publish(bool replace) {
  return m_nameless ? PublishNameless(replace) : PublishNamed(replace);
}

bool NewFile::PublishNameless(bool replace) {
  const std::string source = "/proc/self/fd/" + std::to_string(m_descriptor);
  const auto link = [&](const std::string& name) {
    return linkat(AT_FDCWD, source.c_str(), m_folder, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
  };
  if (link(m_name)) return true;
  if (errno != EEXIST || !replace) return false;
  // Linking does not replace a file, renaming does; the second name exists between these two calls.
  const std::string other = m_name + "." + std::to_string(getpid());
  unlinkat(m_folder, other.c_str(), 0);
  if (!link(other)) return false;
  m_ownName = other;
  return PublishNamed(true);
}

bool NewFile::PublishNamed(bool replace) {
  const unsigned flags = replace ? 0 : RENAME_NOREPLACE;
  if (renameat2(m_folder, m_ownName.c_str(), m_folder, m_name.c_str(), flags) != 0) return false;
  m_ownName.clear();
  return true;
}

bool StartAnew(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return false;
  if (status.st_size > 0 && ftruncate(descriptor, 0) != 0) return false;
  return lseek(descriptor, 0, SEEK_SET) == 0;
}

bool WriteAll(int descriptor, const void* bytes, size_t count) {
  const auto* const from = static_cast<const char*>(bytes);
  for (size_t done = 0; done < count;) {
    const ssize_t written = write(descriptor, from + done, count - done);
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) done += static_cast<size_t>(written);
  }
  return true;
}

}  // namespace host
