#pragma once

#include <functional>
#include <string>

#include "engine_api/mixing/audio_block_mixer.h"

// What the fake block mixer gives. At first the number of sources, as text.
struct BlockMixerScript {
  std::function<std::string(const AudioBlockList& blocks)> process =
      [](const AudioBlockList& blocks) { return std::to_string(blocks.size()); };
};
