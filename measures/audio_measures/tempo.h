#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kTempoVersion = 1;

// tempo, BPM, from 40 to 240; neither direction is better. Onsets are where the level in one of 24
// bands rises; the beat is what their envelope repeats itself after, of several such times the one
// for which its autocorrelation is highest when times an octave from half a second are weighted by
// exp(-1/2) (D. Ellis, "Beat tracking by dynamic programming", J. New Music Research 36(1), 2007),
// measured over up to eight beats. Any rate from 8 kHz, one channel, finite, 6 s at least. Unknown
// for silence, and where nothing repeats itself.
Figure Tempo(std::span<const float> samples, int rate);

}  // namespace audio_measures
