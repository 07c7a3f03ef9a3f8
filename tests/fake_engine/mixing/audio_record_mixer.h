#pragma once

#include <vector>

#include "engine_api/common/audio_frame.h"

// What the fake record mixer was given: copies of the frames pushed to it and of the voice frames
// before they were mixed. Each voice frame comes back with one more in every sample that it counts.
struct RecordMixerScript {
  std::vector<zuwebrtc::AudioFrame> pushed = {};
  std::vector<zuwebrtc::AudioFrame> voice = {};
};
