#pragma once

#include "engine_api/common/audio_frame.h"

namespace harness {

// Puts the frame into its reset state and copies `count` interleaved samples (of all channels
// together) into it: as many as the frame holds, none when the count is not positive. Its
// samples_per_channel_ is what was copied per channel. rate: Hz.
void FillFrame(zuwebrtc::AudioFrame& frame, const short* samples, int count, int rate,
               int channels);

// As many of `count` samples as the data of a frame hold, for writing them out.
inline unsigned FrameSamples(unsigned count) {
  constexpr unsigned kMax = zuwebrtc::AudioFrame::kMaxDataSizeSamples;
  return count < kMax ? count : kMax;
}

}  // namespace harness
