#include "desktop/enhancement/parts/short_time_spectrum.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

std::vector<float> SquareRootOfHann(size_t length) {
  std::vector<float> window(length);
  for (size_t i = 0; i < length; ++i) {
    const double phase = (Real(i) + 0.5) / Real(length);
    window[i] = static_cast<float>(std::sin(std::numbers::pi * phase));
  }
  return window;
}

}  // namespace

// A length with small prime factors only is fast, and the transform then needs no memory of its
// own in every call.
ShortTimeSpectrum::ShortTimeSpectrum(size_t hop)
    : m_window(SquareRootOfHann(2 * hop)),
      m_history(2 * hop),
      m_overlap(hop),
      m_block(Size(kiss_fftr_next_fast_size_real(Count(2 * hop)))),
      m_bins(m_block.size() / 2 + 1),
      m_forward(kiss_fftr_alloc(Count(m_block.size()), 0, nullptr, nullptr)),
      m_inverse(kiss_fftr_alloc(Count(m_block.size()), 1, nullptr, nullptr)) {
  if (m_forward == nullptr || m_inverse == nullptr) throw std::bad_alloc();
}

size_t ShortTimeSpectrum::BinOf(double frequency) const {
  const long bin = std::lround(frequency * Real(m_block.size()));
  return std::min(Size(bin), m_bins.size() - 1);
}

std::span<kiss_fft_cpx> ShortTimeSpectrum::Analyse(std::span<const float> samples) {
  const std::ptrdiff_t hop = Offset(Hop());
  std::copy(m_history.begin() + hop, m_history.end(), m_history.begin());
  std::copy(samples.begin(), samples.begin() + hop, m_history.begin() + hop);

  const float scale = 1.0f / std::sqrt(static_cast<float>(hop));
  for (size_t i = 0; i < m_window.size(); ++i) m_block[i] = m_history[i] * m_window[i] * scale;
  std::fill(m_block.begin() + 2 * hop, m_block.end(), 0.0f);
  kiss_fftr(m_forward.get(), m_block.data(), m_bins.data());
  return m_bins;
}

void ShortTimeSpectrum::Synthesise(std::span<float> samples) {
  kiss_fftri(m_inverse.get(), m_bins.data(), m_block.data());
  const size_t hop = Hop();
  const float scale = std::sqrt(static_cast<float>(hop)) / static_cast<float>(m_block.size());
  for (size_t i = 0; i < hop; ++i) {
    samples[i] = m_overlap[i] + m_block[i] * m_window[i] * scale;
    m_overlap[i] = m_block[hop + i] * m_window[hop + i] * scale;
  }
}

}  // namespace desktop
