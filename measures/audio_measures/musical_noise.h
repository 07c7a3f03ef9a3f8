#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "audio_measures/figure.h"
#include "audio_measures/windowed_spectrum.h"

namespace audio_measures {

// musical: how much of a noise has become single tones that come and go: the natural logarithm of
// the ratio of the kurtosis of its power spectra after and before (Y. Uemura et al., "Automatic
// optimization scheme of spectral subtraction based on musical noise assessment via higher-order
// statistics", IWAENC 2008). The kurtosis is E[p^4] / E[p^2]^2 of the powers p of all bins in
// blocks of 20 ms at least, a power of two of samples, windows of Hann, overlapped by half; 6 for
// normal noise. Each bin is divided by its mean first, so that the colour of the noise does not
// count. No unit; lower is better, 0: as it was.
class MusicalNoise {
 public:
  explicit MusicalNoise(int rate);

  // The same noise before and after, without a gap, of one length; what is shorter than a block
  // does not count.
  void Add(std::span<const float> before, std::span<const float> after);

  // Unknown below 16 blocks, and where nothing is left of the noise.
  Figure LogRatio() const;

 private:
  // Sums over the blocks, for each bin.
  struct Moments {
    std::vector<double> first;
    std::vector<double> second;
    std::vector<double> fourth;
  };

  void Add(std::span<const float> block, Moments& moments);
  static double Kurtosis(const Moments& moments);

  WindowedSpectrum m_spectrum;
  Moments m_before;
  Moments m_after;
  size_t m_blocks = 0;
};

}  // namespace audio_measures
