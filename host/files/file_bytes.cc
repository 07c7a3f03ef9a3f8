#include "files/file_bytes.h"

#include <cerrno>
#include <cstring>

#include "base/units.h"

namespace host {

namespace {

constexpr size_t kBlockBytes = 65536;

}  // namespace

FileBytes::FileBytes(FILE* file, size_t most)
    : m_file(file), m_left(most), m_most(most), m_block(kBlockBytes) {}

bool FileBytes::Fill() {
  if (!m_fault.empty()) return false;
  m_at = 0;
  errno = 0;
  m_count = fread(m_block.data(), 1, m_block.size(), m_file);
  if (ferror(m_file) != 0) m_fault = strerror(errno);
  if (m_count > m_left) m_fault = "longer than " + Bytes(m_most);
  if (!m_fault.empty()) m_count = 0;
  m_left -= m_count;
  return m_count > 0;
}

}  // namespace host
