#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace host {

// Linear prediction of a sample from those before it, by the autocorrelation method (J. Makhoul,
// "Linear prediction: a tutorial review", Proc. IEEE 63(4), 1975).
class Prediction {
 public:
  static constexpr size_t kOrder = 8;

  // Fitted to `samples`. Of silence: predicts 0.
  explicit Prediction(std::span<const float> samples);

  // Writes by how much each of `samples` from kOrder on differs from what was foretold;
  // `errors` has kOrder fewer.
  void Errors(std::span<const float> samples, std::span<float> errors) const;

 private:
  std::array<float, kOrder> m_weights = {};  // Of the sample before, and so on.
};

}  // namespace host
