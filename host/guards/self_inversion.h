#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "guards/track.h"

namespace host {

// Reads as many frames of a sound as `to` has, from `first` on.
using ReadFrom = std::function<void(int64_t first, std::span<float> to)>;

// Whether a sound of so many frames is all but its own negative some time later, as a steady tone
// is half a period later: then nobody can tell upside down from late.
bool InvertsItself(int64_t frames, const ReadFrom& read);

// The same of a channel.
bool InvertsItself(const Track& track, int channel);

}  // namespace host
