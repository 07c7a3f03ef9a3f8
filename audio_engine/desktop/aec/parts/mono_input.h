#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "desktop/dsp/rate/resampler.h"

namespace desktop {

// Brings interleaved audio of 8 to 48 kHz to mono at a rate that the trackers take: 8000 Hz stays,
// all others become 16000 Hz.
class MonoInput {
 public:
  MonoInput(int rate, int channels);

  static bool Accepts(int rate, int channels);
  static int TrackedRate(int rate) { return rate == 8000 ? 8000 : 16000; }

  // Hands on what `count` interleaved samples give, in blocks. A frame that is cut by the end of
  // the samples goes on with the next call.
  void Feed(const short* samples, size_t count,
            const std::function<void(const short*, size_t)>& take);

 private:
  const size_t m_channels;
  Resampler m_resampler;

  // The next block to convert, of which m_filled samples have come.
  std::vector<short> m_frames;
  size_t m_filled = 0;

  std::vector<short> m_mono;
};

}  // namespace desktop
