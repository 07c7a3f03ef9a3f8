#include "audio_measures/clipped.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace audio_measures {

namespace {

constexpr size_t kBlock = 256;  // Samples that are looked at at once.

// Whether a sample may stand at full scale. Magnitudes of floats order as their bits do.
bool MayReach(std::span<const float> samples, float fullScale) {
  const auto least = std::bit_cast<int32_t>(fullScale);
  int32_t reached = 0;
  for (const float sample : samples) {
    reached |= least - 1 - static_cast<int32_t>(std::bit_cast<uint32_t>(sample) & 0x7FFFFFFFU);
  }
  return reached < 0;
}

}  // namespace

// Most of a recording stays below full scale: that is passed over.
void Clipped::Add(std::span<const float> samples) {
  while (!samples.empty()) {
    const auto block = samples.first(std::min(kBlock, samples.size()));
    samples = samples.subspan(block.size());
    if (MayReach(block, m_fullScale)) {
      AddEach(block);
    } else {
      m_samples += block.size();
      m_run = 0;
    }
  }
}

void Clipped::AddEach(std::span<const float> samples) {
  for (const float sample : samples) {
    ++m_samples;
    if (!(std::fabs(sample) >= m_fullScale) || std::isinf(sample)) {
      m_run = 0;
      continue;
    }
    const bool positive = sample > 0;
    m_run = positive == m_positive ? m_run + 1 : 1;
    m_positive = positive;
    if (m_run < kShortestRun) continue;
    m_clipped += m_run == kShortestRun ? kShortestRun : 1;
    if (m_run > kShortestRun) continue;
    ++m_runs;
    if (!m_first) m_first = m_samples - kShortestRun;
  }
}

Figure Clipped::Share() const {
  if (m_samples == 0) return Unknown(kNoSamples);
  return Known(static_cast<double>(m_clipped) / static_cast<double>(m_samples));
}

}  // namespace audio_measures
