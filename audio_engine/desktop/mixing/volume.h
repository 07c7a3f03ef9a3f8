#pragma once

#include <cstdint>
#include <span>

namespace desktop {

// The volume of a block for a display: 0 for a level of -60 dBFS and less, 100 for a full-scale
// square wave, straight in dB between them.
uint32_t Volume(std::span<const int16_t> samples);

}  // namespace desktop
