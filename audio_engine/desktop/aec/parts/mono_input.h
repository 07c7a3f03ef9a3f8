#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "desktop/dsp/aligned_sum.h"
#include "desktop/dsp/rate/resampler.h"

namespace desktop {

// Brings interleaved audio of 8 to 48 kHz to mono, no channel against another, at a rate that the
// trackers take: 8000 Hz stays, all others become 16000 Hz.
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
  AlignedSum m_mix;
  Resampler m_resampler;

  // The next frame, of which m_channel samples have come, and the next block to convert.
  std::vector<short> m_frame;
  size_t m_channel = 0;
  std::vector<short> m_block;
  size_t m_filled = 0;

  std::vector<short> m_mono;
};

}  // namespace desktop
