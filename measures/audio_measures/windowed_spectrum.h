#pragma once

#include <complex>
#include <span>
#include <vector>

#include "audio_measures/real_fft.h"

namespace audio_measures {

// A window of Hann whose copies half a window apart add up to 1.
std::vector<float> Hann(size_t size);

// Power spectra of windowed blocks.
class WindowedSpectrum {
 public:
  // size: of the transform, even; what it is longer than the window is filled with 0.
  WindowedSpectrum(std::vector<float> window, size_t size);

  size_t WindowSize() const { return m_window.size(); }
  size_t Bins() const { return m_fft.Bins(); }

  // block: WindowSize() samples.
  std::span<const float> PowerOf(std::span<const float> block);

 private:
  RealFft m_fft;
  std::vector<float> m_window;
  std::vector<float> m_windowed;
  std::vector<std::complex<float>> m_bins;
  std::vector<float> m_power;
};

}  // namespace audio_measures
