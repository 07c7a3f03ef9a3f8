#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kTempoVersion = 2;
inline constexpr double kTempoLeastSeconds = 6;

// tempo, BPM, from 40 to 240; neither direction is better. The onset envelope is the sum over 24
// bands, evenly spaced in octaves from 60 Hz to 16 kHz or half the rate, of how far the logarithm
// of their power rises in 10 ms, in windows of Hann of 40 ms at least, a power of two of samples;
// what is 40 dB below the mean power does not count. It is smoothed four times by (1, 2, 1),
// and its mean over the second around is taken off. The beat is the time after which it
// repeats itself: the one with the highest product of its autocorrelation and exp(-x^2 / 2), x
// octaves from half a second (D. Ellis, "Beat tracking by dynamic programming", J. New Music
// Research 36(1), 2007), between steps by a parabola, then measured over two, four and eight beats.
// Any rate from 8 kHz, one channel, finite, 6 s at least. Unknown for silence, and where the
// autocorrelation is below a tenth of that at 0, or below 8 / sqrt(n) of it for n steps.
Figure Tempo(std::span<const float> samples, int rate);

}  // namespace audio_measures
