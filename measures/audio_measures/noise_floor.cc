#include "audio_measures/noise_floor.h"

#include <algorithm>
#include <cmath>

namespace audio_measures {

namespace {

constexpr size_t kLeastBlocks = 10;
constexpr double kShare = 0.1;

// In lanes, so that no addition waits for the one before.
double SumOfSquares(std::span<const float> samples) {
  constexpr size_t kLanes = 8;
  double lanes[kLanes] = {};
  size_t i = 0;
  for (; i + kLanes <= samples.size(); i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) {
      const auto value = static_cast<double>(samples[i + lane]);
      lanes[lane] += value * value;
    }
  }
  double sum = 0;
  for (const float sample : samples.subspan(i)) {
    sum += static_cast<double>(sample) * static_cast<double>(sample);
  }
  for (const double lane : lanes) sum += lane;
  return sum;
}

}  // namespace

NoiseFloor::NoiseFloor(int rate) : m_blockSamples(static_cast<size_t>(std::lround(rate * 0.02))) {}

void NoiseFloor::Add(std::span<const float> samples) {
  while (!samples.empty()) {
    const size_t count = std::min(samples.size(), m_blockSamples - m_inBlock);
    m_squares += SumOfSquares(samples.first(count));
    samples = samples.subspan(count);
    m_inBlock += count;
    if (m_inBlock < m_blockSamples) continue;
    m_rms.push_back(static_cast<float>(std::sqrt(m_squares / static_cast<double>(m_blockSamples))));
    m_squares = 0;
    m_inBlock = 0;
  }
}

Figure NoiseFloor::Floor() const {
  if (m_rms.empty() && m_inBlock == 0) return Unknown(kNoSamples);
  if (!AreFinite(m_rms) || !std::isfinite(m_squares)) return Unknown(kNotFinite);
  if (m_rms.size() < kLeastBlocks) return Unknown(kTooShort);
  const double rank = kShare * static_cast<double>(m_rms.size() - 1);
  const auto below = static_cast<std::ptrdiff_t>(rank);
  std::vector<float> ranked = m_rms;
  std::ranges::nth_element(ranked, ranked.begin() + below);
  const auto low = static_cast<double>(ranked[static_cast<size_t>(below)]);
  const auto high =
      static_cast<double>(*std::min_element(ranked.begin() + below + 1, ranked.end()));
  const double floor = low + (rank - static_cast<double>(below)) * (high - low);
  return floor > 0 ? Known(20 * std::log10(floor)) : Unknown(kSilence);
}

}  // namespace audio_measures
