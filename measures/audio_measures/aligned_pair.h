#pragma once

#include <span>
#include <vector>

#include "audio_measures/figure.h"

namespace audio_measures {

// A signal beside its reference, as far as they overlap: at the times of the reference, and at its
// gain and polarity.
struct AlignedPair {
  const char* fault = "";  // Why both are empty and there is no figure; empty where they are not.
  std::vector<float> reference = {};
  std::vector<float> signal = {};

  // All of the signal against the reference.
  Figure delay;       // s, by which it is later, in the middle of what overlaps.
  Figure delayTrack;  // s, from the least to the greatest delay of pieces of 2 s.
  Figure drift;       // ppm, by which it is longer.
  Figure gain;        // dB, least squares.
  Figure polarity;    // 1 or -1.
};

// One channel each, of one rate, finite. The delay of the whole is taken from alignment.h, or where
// drift has smeared it from short pieces; the drift from the line through the delays of pieces
// (delay_track.h); it is taken out where it stands out of its standard error by a factor of 4. What
// is a fraction of a sample is interpolated (interpolation.h), which takes kInterpolationReach
// samples beyond what is compared, unless whole samples fit as well to within those 4 standard
// errors.
AlignedPair AlignPair(std::span<const float> reference, std::span<const float> signal, int rate,
                      double searchSeconds);

}  // namespace audio_measures
