#pragma once

#include <algorithm>
#include <cmath>
#include <random>

// Numbers from -1 to 1, the same on every machine: the standard library's distributions differ from
// one to the other.
class SeededNoise {
 public:
  explicit SeededNoise(unsigned seed) : m_random(seed) {}

  double operator()() { return static_cast<double>(m_random()) / 2147483648.0 - 1; }

 private:
  std::mt19937 m_random;
};

// The sample of 16 bits that is nearest to a value.
inline short NearestSample(double value) {
  return static_cast<short>(std::lrint(std::clamp(value, -32768.0, 32767.0)));
}
