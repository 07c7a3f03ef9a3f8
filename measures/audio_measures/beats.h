#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kBeatFVersion = 1;

// beat_f, from 0 to 1, higher is better: the F-measure of beats against the reference's, 2 h / (r +
// b), of which h hit: at most 70 ms from each other, none used twice, as many as can be paired (S.
// Dixon, "Evaluation of the audio beat tracking system BeatRoot", J. New Music Research 36(1),
// 2007). The first 5 s count on neither side: nobody has found the beat yet (M. Davies, N. Degara,
// M. Plumbley, "Evaluation methods for musical audio beat tracking algorithms", 2009). Both in
// seconds, in any order, finite. Unknown where the reference has no beat that counts.
Figure BeatF(std::span<const double> reference, std::span<const double> beats);

}  // namespace audio_measures
