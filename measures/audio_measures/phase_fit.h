#pragma once

#include <complex>
#include <optional>
#include <span>
#include <vector>

#include "audio_measures/real_fft.h"

namespace audio_measures {

// What is left between two signals whose delay is known to a sample or two: the rest of the delay,
// the gain, the polarity and how alike they are. The delay is the slope of the phase of their
// averaged cross-spectrum (P. Welch, 1967; Hann windows, overlapped by half), by least squares,
// each bin weighted by its signal to noise ratio as the coherence has it (A. Piersol, "Time delay
// estimation using phase data", IEEE Trans. ASSP 29(3), 1981); at last by its share of the
// correlation, so that no other delay has them more alike.
class PhaseFit {
 public:
  static constexpr size_t kBlock = 4096;  // Samples.

  PhaseFit();

  // Both from the same place on and of the same length, the delay taken out of them; less than
  // kBlock samples are not used. All finite.
  void Add(std::span<const float> reference, std::span<const float> signal);

  // The spectra of the blocks of a reference, one after the other, for who holds several signals
  // against the same one: adding them is adding the reference that they were made of.
  using Spectra = std::vector<std::complex<float>>;
  Spectra SpectraOf(std::span<const float> reference);
  void Add(const Spectra& reference, std::span<const float> signal);

  struct Fit {
    double later = 0;        // Samples.
    double gain = 1;         // Of the signal against the reference; below 0: upside down.
    double correlation = 0;  // From -1 to 1, at that delay.
  };
  // -1 when both, as they lie, are more alike with the signal upside down.
  int Polarity() const;

  // polarity: -1 when the signal is taken to be upside down. Nothing for silence on either side, or
  // less than a block.
  std::optional<Fit> Find(int polarity) const;

 private:
  double Slope(double later, int polarity, double band) const;
  double StepToMostAlike(double later, int polarity) const;

  void Transform(std::span<const float> block, std::span<std::complex<float>> bins);
  void AddBlock(std::span<const std::complex<float>> reference, std::span<const float> signal);

  RealFft m_fft;
  std::vector<float> m_window;
  std::vector<float> m_block;
  std::vector<std::complex<float>> m_reference;
  std::vector<std::complex<float>> m_signal;
  std::vector<std::complex<double>> m_cross;
  std::vector<double> m_referencePower;
  std::vector<double> m_signalPower;
};

}  // namespace audio_measures
