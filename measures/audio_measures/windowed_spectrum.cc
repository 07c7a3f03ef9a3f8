#include "audio_measures/windowed_spectrum.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace audio_measures {

std::vector<float> Hann(size_t size) {
  std::vector<float> window(size);
  for (size_t i = 0; float& weight : window) {
    const double turn = static_cast<double>(i++) / static_cast<double>(size);
    weight = static_cast<float>(0.5 - 0.5 * std::cos(2 * M_PI * turn));
  }
  return window;
}

WindowedSpectrum::WindowedSpectrum(std::vector<float> window, size_t size)
    : m_fft(size),
      m_window(std::move(window)),
      m_windowed(size),
      m_bins(m_fft.Bins()),
      m_power(m_fft.Bins()) {}

std::span<const float> WindowedSpectrum::PowerOf(std::span<const float> block) {
  std::ranges::transform(m_window, block, m_windowed.begin(), std::multiplies());
  m_fft.Forward(m_windowed, m_bins);
  std::ranges::transform(m_bins, m_power.begin(), [](const std::complex<float>& bin) {
    return bin.real() * bin.real() + bin.imag() * bin.imag();
  });
  return m_power;
}

}  // namespace audio_measures
