#pragma once

#include <random>

namespace host {

// Triangular noise of two steps' width, uncorrelated from sample to sample and the same in every
// run: added before rounding it makes the error of that independent of the signal (Lipshitz,
// Wannamaker and Vanderkooy, "Quantization and Dither: A Theoretical Survey", JAES 40, 1992).
class Dither {
 public:
  // In steps of the rounding, greater than -1 and less than 1.
  double Next() { return Uniform() - Uniform(); }

 private:
  double Uniform() { return static_cast<double>(m_generator()) / 4294967296.0; }

  std::mt19937 m_generator{997};  // The standard fixes what it generates.
};

}  // namespace host
