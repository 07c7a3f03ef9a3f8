#pragma once

#include <kiss_fftr.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace desktop {

// The spectrum of a signal, hop by hop: windows of two hops that overlap by half, square root of
// Hann before and after, so that an unchanged spectrum gives the signal back, one hop later
// (Allen, "Short term spectral analysis, synthesis, and modification by discrete Fourier
// transform", 1977). Allocates in the constructor only.
class ShortTimeSpectrum {
 public:
  explicit ShortTimeSpectrum(size_t hop);

  size_t Hop() const { return m_window.size() / 2; }

  // The bin that a frequency falls into, given in cycles per sample (0 to 0.5).
  size_t BinOf(double frequency) const;

  // Moves on by one hop of samples and returns the spectrum of the last two, which stays valid and
  // may be changed until the next call. The power of white noise of variance v is v in every bin.
  std::span<kiss_fft_cpx> Analyse(std::span<const float> samples);

  // Turns the spectrum, as it stands now, back into samples: `samples` gets one hop.
  void Synthesise(std::span<float> samples);

 private:
  struct Free {
    void operator()(kiss_fftr_cfg plan) const { kiss_fftr_free(plan); }
  };
  using Plan = std::unique_ptr<kiss_fftr_state, Free>;

  std::vector<float> m_window;

  // The last two hops, and what the last window adds to the next hop.
  std::vector<float> m_history;
  std::vector<float> m_overlap;

  // What is transformed: a window, padded with zeros.
  std::vector<float> m_block;
  std::vector<kiss_fft_cpx> m_bins;
  Plan m_forward;
  Plan m_inverse;
};

// |bin|^2
inline float Power(const kiss_fft_cpx& bin) { return bin.r * bin.r + bin.i * bin.i; }

}  // namespace desktop
