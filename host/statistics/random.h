#pragma once

#include <cstdint>

namespace statistics {

// Random numbers that are the same on every machine: SplitMix64 (Steele, Lea and Flood, Fast
// splittable pseudorandom number generators, OOPSLA 2014).
class Random {
 public:
  explicit Random(uint64_t seed) : m_state(seed) {}

  uint64_t Next() {
    m_state += 0x9E3779B97F4A7C15U;
    uint64_t mixed = m_state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31);
  }

  // Uniform, above 0 and below 1.
  double Uniform() { return (static_cast<double>(Next() >> 12) + 0.5) * 0x1p-52; }

 private:
  uint64_t m_state;
};

}  // namespace statistics
