#pragma once

#include <functional>

#include "engine_api/common/audio_frame.h"

// What the fake detectors hear, and say.
struct AudioMusicDetectorScript {
  std::function<void(const zuwebrtc::AudioFrame& frame)> process = [](const auto&) {};
  std::function<bool()> isMusic = [] { return false; };
};
