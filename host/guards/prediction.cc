#include "guards/prediction.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

constexpr size_t kLags = Prediction::kOrder + 1;

// What a vector register of any machine holds. The compiler does not find this by itself.
using Floats = float __attribute__((vector_size(16)));
constexpr size_t kLanes = sizeof(Floats) / sizeof(float);

Floats Load(const float* from) {
  Floats value;
  memcpy(&value, from, sizeof value);
  return value;
}

// Of samples with themselves, by each lag up to kOrder.
std::array<double, kLags> Autocorrelation(std::span<const float> samples) {
  std::array<Floats, kLags> lanes = {};
  std::array<float, kLags> rest = {};
  const auto addSample = [&](size_t i) {
    for (size_t lag = 0; lag < kLags && lag <= i; ++lag) rest[lag] += samples[i] * samples[i - lag];
  };
  size_t i = 0;
  for (; i < std::min(kLags - 1, samples.size()); ++i) addSample(i);
  for (; i + kLanes <= samples.size(); i += kLanes) {
    const float* const here = samples.data() + i;
    const Floats value = Load(here);
    for (size_t lag = 0; lag < kLags; ++lag) lanes[lag] += value * Load(here - lag);
  }
  for (; i < samples.size(); ++i) addSample(i);
  std::array<double, kLags> sums;
  for (size_t lag = 0; lag < kLags; ++lag) {
    sums[lag] = static_cast<double>(rest[lag]);
    for (size_t lane = 0; lane < kLanes; ++lane) sums[lag] += static_cast<double>(lanes[lag][lane]);
  }
  return sums;
}

}  // namespace

Prediction::Prediction(std::span<const float> samples) {
  std::array<double, kLags> correlation = Autocorrelation(samples);
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
  const std::array<float, kOrder> weights = m_weights;
  size_t i = 0;
  for (; i + kLanes <= errors.size(); i += kLanes) {
    const float* const before = samples.data() + i + kOrder - 1;
    Floats error = Load(before + 1);
    for (size_t lag = 0; lag < kOrder; ++lag) error -= weights[lag] * Load(before - lag);
    memcpy(&errors[i], &error, sizeof error);
  }
  for (; i < errors.size(); ++i) {
    float error = samples[i + kOrder];
    for (size_t lag = 0; lag < kOrder; ++lag)
      error -= m_weights[lag] * samples[i + kOrder - 1 - lag];
    errors[i] = error;
  }
}

}  // namespace host
