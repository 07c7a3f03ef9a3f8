#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kPitchCentsVersion = 2;

// The median pitch of a voice or an instrument, Hz, over its voiced blocks (A. de Cheveigne, H.
// Kawahara, "YIN, a fundamental frequency estimator for speech and music", J. Acoust. Soc. Am.
// 111(4), 2002): a window of 25 ms every 10 ms, both of whole samples, pitches from 60 to
// 1000 Hz, threshold 0.1, parabolic interpolation, without the search for a better neighbour.
// Voiced is what stays below the threshold and is no more than 30 dB softer than the loudest block.
// Any rate from 8 kHz, finite. Unknown below 10 voiced blocks.
Figure MedianPitch(std::span<const float> samples, int rate);

// pitch_cents, cents: how much higher the output is than the reference: the median over the blocks
// that are voiced in both, each beside the block of the reference at the same part of its length;
// neither direction is better. Both of one rate; they need not be of one length. Unknown below 10
// such blocks.
Figure PitchCents(std::span<const float> reference, std::span<const float> output, int rate);

}  // namespace audio_measures
