#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kBandDifferenceVersion = 2;
inline constexpr int kBandDifferenceWorstVersion = 2;

struct BandDifference {
  Figure mean;
  Figure worst;
};

// band_difference and band_difference_worst, dB: how far the levels of both lie apart in
// third-octave bands (IEC 61260-1:2014, base 10: centres at 1000 * 10^(n / 10) Hz, edges a factor
// of 10^(1 / 20) away), from 50 Hz up to half the rate, as long as the reference is no more than 60
// dB below its strongest band there. Levels are sums of the bins of the long-term spectrum (Hann
// windows of at least 160 ms, a power of two, overlapped by half), a bin on an edge in parts; one
// that is 100 dB and more below the strongest counts as 100 dB below. Both aligned by who calls
// (aligned_pair.h), of one length, finite; rates from 8 kHz, one window at least. Unknown where the
// reference is silent.
BandDifference CompareBands(std::span<const float> reference, std::span<const float> signal,
                            int rate);

}  // namespace audio_measures
