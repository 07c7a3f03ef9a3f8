#pragma once

#include <complex>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "audio_measures/real_fft.h"

namespace audio_measures {

// By how many whole samples a signal is later than its reference: the cross-correlation with its
// phase transform (GCC-PHAT: C. Knapp, G. Carter, "The generalized correlation method for
// estimation of time delay", IEEE Trans. ASSP 24(4), 1976), of blocks whose spectra are summed
// before they are made white. Bins far below the mean count less, so that an empty band does not
// add its noise.
class DelayFinder {
 public:
  // least, most: samples by which the signal may be later; below 0: earlier. frames: how long both
  // are; the blocks are no longer than that needs.
  DelayFinder(int64_t least, int64_t most, uint64_t frames);

  size_t ReferenceFrames() const { return m_referenceFrames; }
  size_t SignalFrames() const { return m_fft.Size(); }

  // reference: ReferenceFrames() samples from some place on; signal: SignalFrames() samples from
  // `least` after the same place on. 0 stands for what lies beyond an end. All finite.
  void Add(std::span<const float> reference, std::span<const float> signal);

  struct Peak {
    int64_t lag = 0;       // Samples.
    int polarity = 1;      // -1: the signal is upside down.
    double sharpness = 0;  // Height of the correlation there, over its RMS at all lags.
    double next = 0;       // Of that height, what the highest peak more than kApart away has.
  };
  // Nothing when both had no spectrum in common, as with silence.
  std::optional<Peak> Find() const;
  // The peak of the correlation as it is, in which strong bins count more: the one to look at where
  // few bins have anything in common, as with tones or much noise.
  std::optional<Peak> FindUnweighted() const;

  // Of signals that have nothing to do with each other the peak stays below this.
  static constexpr double kClear = 8;
  static constexpr size_t kApart = 8;  // Samples

 private:
  std::optional<Peak> PeakOf(std::span<const std::complex<float>> cross) const;

  int64_t m_least;
  size_t m_lags;
  RealFft m_fft;
  size_t m_referenceFrames;
  std::vector<float> m_padded;
  std::vector<std::complex<float>> m_reference;
  std::vector<std::complex<float>> m_signal;
  std::vector<std::complex<float>> m_cross;
};

}  // namespace audio_measures
