#pragma once

#include "desktop/dsp/music/music_features.h"

namespace desktop {

// Returns a score, which is above 0 for music. Speech pauses, glides and changes its colour without
// a beat; of these signs none is sure by itself, so each speaks for one side or the other within
// bounds. They were weighed on speech in seventeen languages, clean, noisy and reverberant, and on
// music of some seventy kinds, from drums alone to orchestras.
double MusicScore(const MusicFeatures::Values& values);

}  // namespace desktop
