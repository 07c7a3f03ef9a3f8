#pragma once

#include <algorithm>
#include <functional>

// What the fake AccelerateSoundProcess and StretchSoundProcess do.
struct SoundProcessScript {
  // Answers a code; `*outSamples` is the room, then the samples produced. At first it copies.
  std::function<int(const short* in, unsigned inSamples, short* out, unsigned* outSamples)>
      process = [](const short* in, unsigned inSamples, short* out, unsigned* outSamples) {
        std::copy_n(in, inSamples, out);
        *outSamples = inSamples;
        return 0;
      };
};
