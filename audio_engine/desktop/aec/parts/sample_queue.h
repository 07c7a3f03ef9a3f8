#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>

namespace desktop {

// Hands samples from one thread to another without ever waiting. What finds no room is dropped and
// counted.
class SampleQueue {
 public:
  // The memory is touched, and taken from the machine, as far as it is used only.
  explicit SampleQueue(size_t capacity)
      : m_capacity(capacity), m_ring(std::make_unique_for_overwrite<short[]>(capacity)) {}

  void Push(const short* samples, size_t count) {
    const size_t written = m_written.load(std::memory_order_relaxed);
    const size_t room = m_capacity - (written - m_read.load(std::memory_order_acquire));
    const size_t kept = std::min(count, room);
    for (size_t i = 0; i < kept; ++i) m_ring[(written + i) % m_capacity] = samples[i];
    m_written.store(written + kept, std::memory_order_release);
    m_dropped.fetch_add(count - kept, std::memory_order_relaxed);
  }

  // Takes up to `count` samples, oldest first, and returns how many.
  size_t Pop(short* samples, size_t count) {
    const size_t read = m_read.load(std::memory_order_relaxed);
    const size_t taken = std::min(count, m_written.load(std::memory_order_acquire) - read);
    for (size_t i = 0; i < taken; ++i) samples[i] = m_ring[(read + i) % m_capacity];
    m_read.store(read + taken, std::memory_order_release);
    return taken;
  }

  size_t Dropped() const { return m_dropped.load(std::memory_order_relaxed); }

 private:
  const size_t m_capacity;
  const std::unique_ptr<short[]> m_ring;
  std::atomic<size_t> m_written = 0;
  std::atomic<size_t> m_read = 0;
  std::atomic<size_t> m_dropped = 0;
};

}  // namespace desktop
