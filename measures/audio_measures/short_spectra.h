#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kFwSegSnrVersion = 2;
inline constexpr int kLsdVersion = 2;

struct SpectralDifference {
  Figure fwSegSnr;
  Figure lsd;
};

// fw_seg_snr and lsd, dB, from the spectra of blocks of 30 ms, a window of Hann, every 7.5 ms, both
// aligned by who calls (aligned_pair.h), of one length, finite. Rates from 8 kHz; one block at
// least. Blocks in which the reference is digital silence do not count. Unknown where all are.
//
// fw_seg_snr (Y. Hu, P. Loizou, "Evaluation of objective quality measures for speech enhancement",
// IEEE Trans. ASLP 16(1), 2008): with X and Y the sums of the magnitudes in each of 25 critical
// bands up to 3.8 kHz, Gaussian in shape down to a thousandth (S. Quackenbush et al., "Objective
// measures of speech quality", 1988), the mean over the blocks of sum(X^0.2 SNR) / sum(X^0.2),
// where SNR, the ratio of X^2 to (X - Y)^2 in dB, is held within -10 and 35. Bands more than 60 dB
// below the strongest bin of the block do not count, nor do blocks without any other.
//
// lsd (A. Gray, J. Markel, "Distance measures for speech processing", IEEE Trans. ASSP 24(5),
// 1976): the mean over the blocks of the root mean square over the bins of the difference of both
// spectra in dB, neither taken for less than 60 dB below the maximum of the reference's.
SpectralDifference CompareSpectra(std::span<const float> reference, std::span<const float> signal,
                                  int rate);

}  // namespace audio_measures
