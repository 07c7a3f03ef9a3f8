#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kCepstralDistanceVersion = 2;

// cepstral_distance, dB (Y. Hu, P. Loizou, "Evaluation of objective quality measures for speech
// enhancement", IEEE Trans. ASLP 16(1), 2008): in blocks of 30 ms, a window of Hann, every 7.5 ms,
// (10 / ln 10) sqrt(2 sum (c - d)^2) over the cepstral coefficients 1 to p of the linear predictors
// of both, p = 10 below 10 kHz and 16 from there on, held within 0 and 10; the mean over the lower
// 95 % of the blocks. Both aligned by who calls (aligned_pair.h), of one length, finite; rates from
// 8 kHz, one block at least. The predictors see each block with white noise 90 dB below it, without
// which those of tones are not to be had. Blocks in which either is digital silence do not count;
// unknown where all are.
Figure CepstralDistance(std::span<const float> reference, std::span<const float> signal, int rate);

}  // namespace audio_measures
