#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <vector>

#include "desktop/dsp/dynamics/sliding_maximum.h"
#include "desktop/dsp/real_fft.h"
#include "desktop/dsp/sample_blocks.h"

namespace desktop {

// Moves the formants of a voice and leaves its pitch: in a short-time Fourier transform it divides
// by the spectral envelope and multiplies by one that is stretched over frequency (the envelope
// runs along the peaks of the spectrum, as in Röbel and Rodet, "Efficient spectral envelope
// estimation and its application to pitch shifting and envelope preservation", 2005; here by a
// sliding maximum as wide as the harmonics lie apart, smoothed). The phases stay, so the sound is
// not smeared.
class FormantMover {
 public:
  // ratio: by which the frequencies of the formants are multiplied, 0.25 to 4. rate: Hz, 8000 to
  // 192000. channels: 1 or 2, moved alike. Throws when there is no memory.
  FormantMover(double ratio, int rate, int channels);

  // Processes rows[0..channels) in place.
  void Process(float* const* rows, size_t frames);

  // Frames until what goes in comes out.
  size_t Latency() const { return m_fft.Size(); }

 private:
  struct Channel {
    // The last samples, as many as are transformed; what is complete of the output, and what is
    // still to be added to.
    std::vector<float> past;
    std::vector<float> sum;
    std::vector<std::complex<float>> spectrum;
  };

  void Move();
  size_t Spacing();
  void FollowPeaks(size_t width);
  void UpdateGains();

  const double m_ratio;
  const int m_rate;
  const size_t m_channels;
  const size_t m_hop;
  RealFft m_fft;
  std::vector<float> m_window;

  // The autocorrelation of the squared window, 1 at lag 0.
  std::vector<float> m_windowLikeness;
  std::array<Channel, kMaxEffectChannels> m_channel;
  size_t m_filled = 0;
  std::vector<float> m_block;
  std::vector<std::complex<float>> m_bins;
  SlidingMaximum m_highest;

  // By bin: the power of all channels, the logarithm of its envelope, the sums of that from bin 0
  // on, and the logarithm of the gain.
  std::vector<float> m_power;
  std::vector<float> m_envelope;
  std::vector<float> m_sums;
  std::vector<float> m_gain;
};

}  // namespace desktop
