#include "desktop/codec/parts/malloc_bytes.h"

#include <algorithm>
#include <cstring>

namespace desktop {

bool MallocBytes::Append(const unsigned char* data, size_t count) {
  if (count > m_maxBytes - m_size) {
    m_full = true;
    return false;
  }
  if (count == 0) return true;
  if (!Reserve(m_size + count)) {
    m_outOfMemory = true;
    return false;
  }
  memcpy(m_data.get() + m_size, data, count);
  m_size += count;
  return true;
}

unsigned char* MallocBytes::Release() {
  m_size = 0;
  m_capacity = 0;
  return m_data.release();
}

// Doubling keeps the number of moves small however the bytes come.
bool MallocBytes::Reserve(size_t bytes) {
  if (bytes <= m_capacity) return true;
  const size_t doubled = std::min(m_maxBytes, std::max(bytes, 2 * m_capacity));
  auto* memory = static_cast<unsigned char*>(realloc(m_data.get(), doubled));
  if (memory == nullptr) return false;
  static_cast<void>(m_data.release());  // realloc has freed or moved it.
  m_data.reset(memory);
  m_capacity = doubled;
  return true;
}

}  // namespace desktop
