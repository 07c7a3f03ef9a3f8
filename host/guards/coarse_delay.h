#pragma once

#include <cstdint>
#include <optional>

#include "guards/track.h"

namespace host {

// One channel of an input beside one of what was made of it.
struct ChannelOfEach {
  const Track& input;
  int source = 0;  // Of the input.
  const Track& output;
  int channel = 0;
  int rate = 0;  // Hz, of both tracks.
};

// By about how many frames the output is later, from `least` to `most`: GCC-PHAT of both at some
// 8 kHz, first of delays of up to some 0.05 s, of one stretch after the other until it is plain. It
// may be off by as many frames
// as make one at that rate. Nothing where it is not plain, or upside down: then only the whole
// signals can tell.
std::optional<int64_t> CoarseDelay(const ChannelOfEach& both, int64_t least, int64_t most);

}  // namespace host
