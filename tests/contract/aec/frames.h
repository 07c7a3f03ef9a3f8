#pragma once

#include <functional>
#include <vector>

#include "engine_api/common/audio_frame.h"

// What modules do with the frames of these tests.

inline void NegateFrame(zuwebrtc::AudioFrame& frame) {
  for (short& sample : frame.data_) sample = static_cast<short>(-sample);
}

// Collects what the frames hold.
inline std::function<void(zuwebrtc::AudioFrame&)> Into(std::vector<short>& samples) {
  return [&samples](zuwebrtc::AudioFrame& frame) {
    samples.insert(samples.end(), frame.data_,
                   frame.data_ + frame.samples_per_channel_ * frame.num_channels_);
  };
}
