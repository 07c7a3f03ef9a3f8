#pragma once

#include <functional>

#include "engine_api/common/audio_frame.h"

// What the fake's audio buffers do besides holding samples.
struct AudioBufferScript {
  // Changes a frame after the buffer's samples have been put into it.
  std::function<void(zuwebrtc::AudioFrame& frame)> interleave = [](zuwebrtc::AudioFrame&) {};
};
