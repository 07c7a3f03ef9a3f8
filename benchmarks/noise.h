#pragma once

#include <cstdint>

// White 16-bit noise, the same on every machine. A linear congruential generator (Knuth, The Art of
// Computer Programming, volume 2) whose upper bits are used.
class Noise {
 public:
  explicit Noise(uint64_t seed) : m_state(seed) {}

  short Next() {
    m_state = m_state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<short>(m_state >> 48);
  }

 private:
  uint64_t m_state;
};
