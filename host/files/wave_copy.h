#pragma once

#include <cstdio>
#include <functional>
#include <string>

#include "files/audio_layout.h"
#include "files/beneath.h"

namespace host {

// A copy of headerless audio that any player opens: WAVE, 16-bit, canonical 44-byte header.

struct WaveCopy {
  std::string path;
  double attenuation =
      0;                // dB by which the copy is softer, because the original is over full scale.
  std::string problem;  // Why there is no copy; empty when there is one.
};

// Writes the samples of `file` to `to`, rounded to the nearest 16-bit value without dither. Where
// `peak`, that of the original, is above full scale the copy is attenuated to a peak of -1 dBFS.
// Samples that are not finite become 0. Memory does not grow with the file. Gives up, with the
// problem kStopped, as soon as `goOn` returns false.
WaveCopy WriteWaveCopy(FILE* file, const AudioLayout& layout, double peak, const WorkFile& to,
                       const std::function<bool()>& goOn);

}  // namespace host
