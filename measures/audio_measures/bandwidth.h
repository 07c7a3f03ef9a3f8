#pragma once

#include <span>
#include <vector>

#include "audio_measures/figure.h"
#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

inline constexpr int kBandwidthVersion = 1;
inline constexpr int kBandwidth40DbVersion = 1;

// bandwidth and bandwidth_40db of one channel, Hz, from its long-term spectrum (P. Welch, "The use
// of fast Fourier transform for the estimation of power spectra", IEEE Trans. AU 15(2), 1967: Hann
// windows of at least 80 ms, a power of two of samples, overlapped by half). What is constant does
// not count.
//   bandwidth       below it lies 99 % of the energy (ITU-R SM.328 has 99 % as well).
//   bandwidth_40db  from there on the spectrum is more than 40 dB below its maximum, linear in dB
//                   between two bins; half the rate where it never is.
// Any rate from 100 Hz, finite samples, as long as one window. Unknown for silence.
class Bandwidth {
 public:
  explicit Bandwidth(int rate);

  void Add(std::span<const float> samples);

  Figure OfEnergy() const;
  Figure Of40Db() const;

 private:
  void Transform();
  const char* Fault() const;

  int m_rate;
  WindowedSpectrum m_spectrum;
  std::vector<float> m_block;
  std::vector<double> m_power;  // Of both sides, per bin.
  size_t m_inBlock = 0;
  bool m_any = false;
  bool m_whole = false;  // A window has been full.
};

}  // namespace audio_measures
