#pragma once

#include <cstdint>

namespace host {

// Only the basic operations on doubles are used for the demo's sounds, whose results are the same
// to the last bit wherever the code runs; the functions of the mathematical library are not.

double Sine(double turns);  // sin(2 pi turns)
double Exp(double x);       // For |x| below 50.
double Gain(double db);     // The factor of an amplitude.

// Uniform white noise from -1 to 1 (linear congruential, constants of Knuth's MMIX).
class Noise {
 public:
  explicit Noise(uint64_t seed) : m_state(seed) {}
  double Next() {
    m_state = m_state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<double>(static_cast<int32_t>(m_state >> 32)) * (1.0 / 2147483648.0);
  }
  double Between(double least, double most) { return least + (most - least) * 0.5 * (Next() + 1); }

 private:
  uint64_t m_state;
};

}  // namespace host
