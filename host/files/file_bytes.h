#pragma once

#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

namespace host {

// The bytes of an open file one after the other, read block by block.
class FileBytes {
 public:
  // The file stays open for as long as this object lives. More than `most` bytes are a fault.
  FileBytes(FILE* file, size_t most);

  // An input iterator.
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    Iterator() = default;
    explicit Iterator(FileBytes* bytes) : m_bytes(bytes) {}
    char operator*() const { return m_bytes->m_block[m_bytes->m_at]; }
    Iterator& operator++() {
      ++m_bytes->m_at;
      return *this;
    }
    Iterator operator++(int) {
      ++m_bytes->m_at;
      return *this;
    }
    // Only against the end.
    bool operator==(const Iterator& end) const {
      return (m_bytes == nullptr || m_bytes->AtEnd()) == (end.m_bytes == nullptr);
    }

   private:
    FileBytes* m_bytes = nullptr;
  };

  Iterator begin() { return Iterator(this); }
  static Iterator end() { return {}; }

  // Why the bytes ended before the file did; empty when they did not.
  const std::string& fault() const { return m_fault; }

 private:
  bool AtEnd() { return m_at == m_count && !Fill(); }
  bool Fill();

  FILE* m_file;
  size_t m_left;
  size_t m_most;
  std::vector<char> m_block;
  size_t m_at = 0;
  size_t m_count = 0;
  std::string m_fault;
};

}  // namespace host
