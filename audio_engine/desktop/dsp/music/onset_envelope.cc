#include "desktop/dsp/music/onset_envelope.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

constexpr double kLowestBand = 40;      // Hz.
constexpr double kHighestBand = 12000;  // Hz.
constexpr double kBassEnd = 175;        // Hz.

// A band that lies so far under the loudest one counts as empty.
constexpr float kRange = 1e-5F;

// The mean power of a block below which all is silence: about -70 dBFS.
constexpr float kSilence = 1e-7F;

// How long it takes until a loud passage no longer hides a quiet one.
constexpr double kForgetSeconds = 8;

size_t TransformSize(int rate) {
  size_t size = 128;
  while (Real(size) < 0.02 * rate) size *= 2;
  return size;
}

}  // namespace

OnsetEnvelope::OnsetEnvelope(int rate, int channels)
    : m_rate(rate),
      m_hop(Size((rate + 50) / 100)),
      m_size(TransformSize(rate)),
      m_transform(kiss_fftr_alloc(Count(m_size), 0, nullptr, nullptr)),
      m_window(m_size),
      m_rings(Size(channels), std::vector<float>(m_size)),
      m_block(m_size),
      m_spectrum(m_size / 2 + 1) {
  if (!m_transform) throw std::bad_alloc();
  for (size_t i = 0; i < m_size; ++i) {
    const double phase = 2 * M_PI * (Real(i) + 0.5) / Real(m_size);
    m_window[i] = static_cast<float>(0.5 - 0.5 * std::cos(phase));
  }
  const double binHz = rate / Real(m_size);
  const double top = std::min(kHighestBand, 0.45 * rate);
  for (double edge = kLowestBand; edge < top * 1.2; edge *= std::sqrt(2.0)) {
    const size_t bin = Size(std::lround(std::min(edge, top) / binHz));
    if (bin >= 1 && (m_edges.empty() || bin > m_edges.back())) m_edges.push_back(bin);
  }
  const auto bassEnd =
      std::upper_bound(m_edges.begin(), m_edges.end(), Size(std::lround(kBassEnd / binHz)));
  m_bassBands = Size(bassEnd - m_edges.begin()) - 1;
  for (auto* levels : {&m_before[0], &m_before[1], &m_now, &m_loud[0], &m_loud[1], &m_loud[2]})
    levels->resize(m_edges.size() - 1);
}

double OnsetEnvelope::Latency() const { return 0.5 * Real(m_size) / m_rate + 0.004; }

bool OnsetEnvelope::Put(const short* frame) {
  for (std::vector<float>& ring : m_rings) ring[m_next] = static_cast<float>(*frame++) / 32768.0F;
  m_next = (m_next + 1) % m_size;
  if (++m_sinceHop < m_hop) return false;
  m_sinceHop = 0;
  Analyse();
  return true;
}

// Adds what a channel has in each band, as its share of the mean of all channels.
void OnsetEnvelope::AddPowers(const std::vector<float>& ring) {
  for (size_t i = 0; i < m_size; ++i) m_block[i] = m_window[i] * ring[(m_next + i) % m_size];
  kiss_fftr(m_transform.get(), m_block.data(), m_spectrum.data());

  const auto size = static_cast<float>(m_size);
  const float scale = 4 / (size * size * static_cast<float>(m_rings.size()));
  for (size_t band = 0; band < m_now.size(); ++band) {
    float power = 0;
    for (size_t bin = m_edges[band]; bin < m_edges[band + 1]; ++bin) {
      power += m_spectrum[bin].r * m_spectrum[bin].r + m_spectrum[bin].i * m_spectrum[bin].i;
    }
    m_now[band] += power * scale;
  }
}

void OnsetEnvelope::Analyse() {
  std::fill(m_now.begin(), m_now.end(), 0.0F);
  for (const std::vector<float>& ring : m_rings) AddPowers(ring);
  const float loudest = *std::max_element(m_now.begin(), m_now.end());
  const auto fall = static_cast<float>(std::exp(-Step() / kForgetSeconds));
  m_loudest = std::max({loudest, m_loudest * fall, kSilence});

  m_value = 0;
  m_weight = 0;
  for (size_t band = 0; band < m_now.size(); ++band) {
    const float share = std::min(m_now[band] / m_loudest, 1.0F);
    const float level = std::log(kRange + share) - std::log(kRange);
    m_value += std::max(level - m_before[1][band], 0.0F);
    m_now[band] = level;
    m_loud[2][band] = std::sqrt(share);
    m_weight += std::max(m_loud[2][band] - m_loud[1][band], 0.0F);
    if (band + 1 == m_bassBands) m_bass = m_weight;
  }
  std::swap(m_loud[1], m_loud[0]);
  std::swap(m_loud[0], m_loud[2]);
  m_value /= static_cast<float>(m_now.size());
  std::swap(m_before[1], m_before[0]);
  std::swap(m_before[0], m_now);
}

}  // namespace desktop
