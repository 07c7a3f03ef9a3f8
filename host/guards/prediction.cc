#include "guards/prediction.h"

#include <algorithm>

namespace host {

Prediction::Prediction(std::span<const float> samples) {
  std::array<double, kOrder + 1> correlation = {};
  for (size_t lag = 0; lag <= kOrder && lag < samples.size(); ++lag) {
    float sum = 0;
    for (size_t i = lag; i < samples.size(); ++i) sum += samples[i] * samples[i - lag];
    correlation[lag] = static_cast<double>(sum);
  }
  if (!(correlation[0] > 0)) return;
  // As if there were noise 30 dB below: else an empty band, of which two resamplers make different
  // things, would decide on the weights.
  correlation[0] *= 1.001;

  // Levinson and Durbin.
  std::array<double, kOrder> weights = {};
  double error = correlation[0];
  for (size_t order = 0; order < kOrder; ++order) {
    double reflection = correlation[order + 1];
    for (size_t i = 0; i < order; ++i) reflection -= weights[i] * correlation[order - i];
    reflection /= error;
    std::array<double, kOrder> next = weights;
    next[order] = reflection;
    for (size_t i = 0; i < order; ++i) next[i] -= reflection * weights[order - 1 - i];
    weights = next;
    error *= 1 - reflection * reflection;
    if (!(error > 0)) break;
  }
  std::ranges::transform(weights, m_weights.begin(),
                         [](double weight) { return static_cast<float>(weight); });
}

void Prediction::Errors(std::span<const float> samples, std::span<float> errors) const {
  for (size_t i = 0; i < errors.size(); ++i) {
    float error = samples[i + kOrder];
    for (size_t lag = 0; lag < kOrder; ++lag)
      error -= m_weights[lag] * samples[i + kOrder - 1 - lag];
    errors[i] = error;
  }
}

}  // namespace host
