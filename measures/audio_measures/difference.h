#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kSnrVersion = 2;
inline constexpr int kSiSdrVersion = 2;
inline constexpr int kSegSnrVersion = 2;

// What tells nothing from the reference counts as this much below it.
inline constexpr double kHighestSnr = 120;  // dB

// snr, dB: 10 log10(|s|^2 / |s - y|^2). Both of one length, any rate, finite, aligned by who calls
// (aligned_pair.h). Unknown where the reference is silent.
Figure Snr(std::span<const float> reference, std::span<const float> signal);

// si_sdr, dB: 10 log10(|a s|^2 / |a s - y|^2) with a = <y, s> / |s|^2, the means of both taken off
// (J. Le Roux, S. Wisdom, H. Erdogan, J. Hershey, "SDR - half-baked or well done?", ICASSP 2019).
// As snr, and unknown where the signal is silent.
Figure SiSdr(std::span<const float> reference, std::span<const float> signal);

// seg_snr, dB: the mean of snr in blocks of 20 ms, each held within -10 and 35 dB (J. Hansen,
// B. Pellom, "An effective quality evaluation protocol for speech enhancement algorithms", ICSLP
// 1998). Blocks in which the reference is digital silence do not count, nor does a last part of a
// block. Rates from 100 Hz.
Figure SegSnr(std::span<const float> reference, std::span<const float> signal, int rate);

}  // namespace audio_measures
