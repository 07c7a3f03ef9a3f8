#pragma once

#include "base/json_parts.h"
#include "report_page/excerpt.h"

namespace host {

// How an excerpt of an output differs from another recording of the same rate, against which it is
// later by `delay` seconds.

// Level and gain of the difference of their loudest channels; null where both have too little in
// common.
Json DifferenceJson(const SoundPart& output, const SoundPart& other, const FrameRange& range,
                    double delay);

// The ratio of the reference to the difference over time; null where there is none.
Json SnrCurve(const SoundPart& output, const SoundPart& reference, const FrameRange& range,
              double delay);

// What belongs with the output of an echo canceller, all of its rate.
struct EchoSounds {
  const SoundPart* far = nullptr;
  const SoundPart* input = nullptr;  // Of the microphone.
  const SoundPart* near = nullptr;   // Null where it is not known.
  double delay = 0;                  // s, by which the output is later than the input.
};

// The echo return loss enhancement over time, while only the far end talks; null where that cannot
// be told.
Json EchoLossCurve(const SoundPart& output, const EchoSounds& sounds, const FrameRange& range);

}  // namespace host
