#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <vector>

namespace desktop {

// Samples on their way from one thread to another, of which neither ever waits: one thread writes,
// one other reads (Lamport, "Specifying Concurrent Program Modules", 1983).
class BlockRing {
 public:
  explicit BlockRing(size_t capacity) : m_samples(capacity) {}

  // Takes all `count` samples, or returns false and takes none when they do not fit. The writing
  // thread.
  bool Write(const short* samples, size_t count) {
    const size_t written = m_written.load(std::memory_order_relaxed);
    if (count > m_samples.size() - (written - m_read.load(std::memory_order_acquire))) return false;
    const size_t at = written % m_samples.size();
    const size_t first = std::min(count, m_samples.size() - at);
    std::copy_n(samples, first, m_samples.data() + at);
    std::copy_n(samples + first, count - first, m_samples.begin());
    m_written.store(written + count, std::memory_order_release);
    return true;
  }

  // Gives all `count` samples, or returns false and gives none when fewer wait. The reading thread.
  bool Read(short* samples, size_t count) {
    const size_t read = m_read.load(std::memory_order_relaxed);
    if (count > m_written.load(std::memory_order_acquire) - read) return false;
    const size_t at = read % m_samples.size();
    const size_t first = std::min(count, m_samples.size() - at);
    std::copy_n(m_samples.data() + at, first, samples);
    std::copy_n(m_samples.begin(), count - first, samples + first);
    m_read.store(read + count, std::memory_order_release);
    return true;
  }

  // Drops what waits. The reading thread.
  void Clear() { m_read = m_written.load(); }

  // Returns how many samples wait. Either thread; the other one may change it at any time.
  size_t Waiting() const {
    const size_t read = m_read.load(std::memory_order_acquire);
    return m_written.load(std::memory_order_acquire) - read;
  }

  size_t Capacity() const { return m_samples.size(); }

 private:
  std::vector<short> m_samples;
  // Samples since the beginning.
  std::atomic<size_t> m_written = 0;
  std::atomic<size_t> m_read = 0;
};

}  // namespace desktop
