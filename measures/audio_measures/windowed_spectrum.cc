#include "audio_measures/windowed_spectrum.h"

#include <cmath>

namespace audio_measures {

std::vector<float> Hann(size_t size) {
  std::vector<float> window(size);
  for (size_t i = 0; i < size; ++i) {
    const double turn = static_cast<double>(i) / static_cast<double>(size);
    window[i] = static_cast<float>(0.5 - 0.5 * std::cos(2 * M_PI * turn));
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
  for (size_t i = 0; i < m_window.size(); ++i) m_windowed[i] = block[i] * m_window[i];
  m_fft.Forward(m_windowed, m_bins);
  for (size_t i = 0; i < m_bins.size(); ++i) {
    const float real = m_bins[i].real();
    const float imaginary = m_bins[i].imag();
    m_power[i] = real * real + imaginary * imaginary;
  }
  return m_power;
}

}  // namespace audio_measures
