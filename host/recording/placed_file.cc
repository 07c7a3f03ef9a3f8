#include "recording/placed_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "files/beneath.h"

namespace host {

PlacedFile::PlacedFile(const std::string& folder, const std::string& place) {
  const int root = OpenFolder(folder);
  const std::filesystem::path path(place);
  const std::string above = path.has_parent_path() ? path.parent_path().string() : ".";
  if (root >= 0 && CreateParentsBeneath(root, place) == 0) {
    m_parent = OpenBeneath(root, above, O_PATH | O_DIRECTORY | O_CLOEXEC, 0);
  }
  if (m_parent >= 0) m_file = std::make_unique<NewFile>(m_parent, path.filename(), 0666);
  if (descriptor() < 0) m_fault = WriteFault(errno);
  if (root >= 0) close(root);
}

PlacedFile::~PlacedFile() {
  m_file.reset();
  if (m_parent >= 0) close(m_parent);
}

PlacedFile::PlacedFile(PlacedFile&& other) noexcept
    : m_parent(std::exchange(other.m_parent, -1)),
      m_file(std::move(other.m_file)),
      m_fault(std::move(other.m_fault)) {}

FileDigest PlacedFile::Digest() const {
  // The file itself is open for writing only.
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor());
  const int file = open(link.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return {.fault = strerror(errno)};
  FileDigest made = DigestOf(file, [] { return true; });
  close(file);
  return made;
}

std::string PlacedFile::Publish() { return m_file->Publish(true) ? "" : WriteFault(errno); }

}  // namespace host
