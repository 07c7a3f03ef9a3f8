#pragma once

#include <functional>

#include "engine_api/common/audio_frame.h"

// What the fake's echo-cancellation modules do.
struct AecModuleScript {
  // Changes a near-end frame in place. At first the frame stays as it is.
  std::function<void(zuwebrtc::AudioFrame& frame)> capture = [](zuwebrtc::AudioFrame&) {};

  // Looks at a far-end frame, and may change it.
  std::function<void(zuwebrtc::AudioFrame& frame)> render = [](zuwebrtc::AudioFrame&) {};
};
