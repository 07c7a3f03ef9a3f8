#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace audio_measures {

// When somebody talks, in blocks of 20 ms. A last part of a block is in none.
struct Activity {
  const char* fault = "";  // Why it cannot be told, with no blocks; empty where it can.
  // 1 or 0 for each block. active: loud enough by itself. talk: active, or no more than 0.2 s after
  // a block that is. pause: neither talk nor within 60 ms before it.
  std::vector<uint8_t> active = {};
  std::vector<uint8_t> talk = {};
  std::vector<uint8_t> pause = {};
};

size_t ActivityBlock(int rate);  // Samples.

// Of speech without much noise: active is a block whose RMS lies at most 15.9 dB below the active
// level (active_level.h); 15.9 dB and the hang-over of 0.2 s are those of ITU-T P.56. An active
// level below -60 dBFS is the noise of a line on which nobody talks.
Activity ActivityOf(std::span<const float> speech, int rate);

// Of speech in noise: active is a block whose RMS lies 6 dB or more above the noise floor
// (noise_floor.h). Noise alone is a pause throughout.
Activity ActivityInNoise(std::span<const float> noisy, int rate);

// The energy of each block.
std::vector<double> BlockEnergies(std::span<const float> samples, int rate);

}  // namespace audio_measures
