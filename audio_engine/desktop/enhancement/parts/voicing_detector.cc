#include "desktop/enhancement/parts/voicing_detector.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

constexpr size_t kHistoryBlocks = 4;
constexpr float kVoiced = 0.6f;

// The share of the sample before that is taken off each sample, which takes rumble down. With all
// of it, speech in noise would be lost.
constexpr float kTilt = 0.5f;

}  // namespace

// The end of a block that does not fill a sample of the history is left out: at most 0.2 ms of 10.
VoicingDetector::VoicingDetector(int rate, size_t hop)
    : m_decimation(Size(std::max(1, rate / 4000))),
      m_history(kHistoryBlocks * (hop / m_decimation)),
      m_shortestLag(Size(rate) / m_decimation / 400),
      m_longestLag(Size(rate) / m_decimation / 80) {}

bool VoicingDetector::Process(std::span<const float> samples) {
  const size_t fresh = m_history.size() / kHistoryBlocks;
  std::copy(m_history.begin() + Offset(fresh), m_history.end(), m_history.begin());
  for (size_t i = 0; i < fresh; ++i) {
    const auto part = samples.subspan(i * m_decimation, m_decimation);
    const float sample = std::accumulate(part.begin(), part.end(), 0.0f);
    m_history[m_history.size() - fresh + i] = sample - kTilt * m_before;
    m_before = sample;
  }
  for (size_t lag = m_shortestLag; lag <= m_longestLag; ++lag) {
    if (Correlation(lag) > kVoiced) return true;
  }
  return false;
}

// Compares the last half of the history with the samples that came `lag` earlier. Returns 0 for
// silence.
float VoicingDetector::Correlation(size_t lag) const {
  const size_t begin = m_history.size() / 2;
  float cross = 0.0f;
  float now = 0.0f;
  float before = 0.0f;
  for (size_t i = begin; i < m_history.size(); ++i) {
    cross += m_history[i] * m_history[i - lag];
    now += m_history[i] * m_history[i];
    before += m_history[i - lag] * m_history[i - lag];
  }
  return now > 0.0f && before > 0.0f ? cross / std::sqrt(now * before) : 0.0f;
}

}  // namespace desktop
