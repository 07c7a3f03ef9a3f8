#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kBandLimitVersion = 2;

// band_limit, Hz, higher is better: the highest frequency that a codec keeps: at which the
// long-term spectrum of the output (P. Welch, "The use of fast Fourier transform for the estimation
// of power spectra", IEEE Trans. AU 15(2), 1967: windows of Hann of at least 80 ms, a power of two
// of samples, overlapped by half, then the mean over 9 bins) is at most 20 dB below that of the
// input, after one gain for all; linear in dB between two bins. Where the input is more than 70 dB
// below its own maximum it has nothing that could be kept: of a codec that keeps everything it is
// the highest frequency of the input, and of one that keeps nothing 0. One rate, from 8 kHz,
// finite, 0.6 s at least. Unknown for silence on either side.
Figure BandLimit(std::span<const float> input, std::span<const float> output, int rate);

}  // namespace audio_measures
