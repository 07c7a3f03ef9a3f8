#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace desktop {

// Bytes that grow at constant cost each, up to a limit, in memory that free() releases.
class MallocBytes {
 public:
  explicit MallocBytes(size_t maxBytes) : m_maxBytes(maxBytes) {}

  // Appends `count` bytes, all of them or none: false when they exceed the limit or the memory.
  bool Append(const unsigned char* data, size_t count);

  // Which of the two made an Append fail. Nothing more should be appended then.
  bool IsFull() const { return m_full; }
  bool IsOutOfMemory() const { return m_outOfMemory; }

  const unsigned char* data() const { return m_data.get(); }
  size_t size() const { return m_size; }
  size_t capacity() const { return m_capacity; }

  // Hands the bytes over to the caller, who frees them; null when there are none.
  unsigned char* Release();

 private:
  struct Free {
    void operator()(unsigned char* memory) const { free(memory); }
  };

  bool Reserve(size_t bytes);

  const size_t m_maxBytes;
  std::unique_ptr<unsigned char, Free> m_data;
  size_t m_size = 0;
  size_t m_capacity = 0;
  bool m_full = false;
  bool m_outOfMemory = false;
};

}  // namespace desktop
