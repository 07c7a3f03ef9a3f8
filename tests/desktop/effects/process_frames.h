#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "engine_api/common/audio_frame.h"

// What comes out of a module when it is given the samples frame by frame, 10 ms each; a last part
// of a frame stays as it is.
template <typename Module>
std::vector<short> ProcessFrames(Module& module, std::vector<short> samples, int rate,
                                 int channels) {
  const auto block = static_cast<size_t>(rate / 100 * channels);
  for (size_t at = 0; at + block <= samples.size(); at += block) {
    zuwebrtc::AudioFrame frame;
    frame.sample_rate_hz_ = rate;
    frame.num_channels_ = channels;
    frame.samples_per_channel_ = rate / 100;
    std::copy_n(&samples[at], block, frame.data_);
    module.Process(frame);
    std::copy_n(frame.data_, block, &samples[at]);
  }
  return samples;
}
