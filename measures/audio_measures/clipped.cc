#include "audio_measures/clipped.h"

#include <cmath>

namespace audio_measures {

void Clipped::Add(std::span<const float> samples) {
  for (const float sample : samples) {
    ++m_samples;
    if (!(std::fabs(sample) >= m_fullScale) || std::isinf(sample)) {
      m_run = 0;
      continue;
    }
    const bool positive = sample > 0;
    m_run = m_run > 0 && positive == m_positive ? m_run + 1 : 1;
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
