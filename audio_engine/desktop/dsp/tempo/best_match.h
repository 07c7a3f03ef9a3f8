#pragma once

#include <cstddef>

namespace desktop {

// Where a stretch of signal looks most like another one: the measure by which waveform-similarity
// overlap-add chooses its joins (Verhelst and Roelands, "An overlap-add technique based on waveform
// similarity for high quality time-scale modification of speech", 1993).
struct Match {
  // The best of the places asked for.
  size_t place = 0;

  // The normalised correlation there, -1 to 1; 1 where both are silent.
  double likeness = 0;
};

// Compares pattern[0..length) with field[i..i+length) for i = 0..places-1 (at least one), all in
// frames of `channels` interleaved samples. Every channel is compared with itself, so that none can
// cancel another. It looks at every `step`-th place and frame first, then at the neighbours of the
// best; step 1 is a full search. `step` should be below half a period of the highest strong
// component.
Match BestMatch(const float* pattern, size_t length, const float* field, size_t places, size_t step,
                size_t channels);

}  // namespace desktop
