#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "engine_api/common/audio_frame.h"

// What the fakes that work on frames do to each: AudioEffectModule, AudioKaraokeEffectModule,
// MultibandDrc. At first nothing, with the answer 1.
struct FrameEffectScript {
  std::function<uint32_t(zuwebrtc::AudioFrame& frame)> process = [](zuwebrtc::AudioFrame&) {
    return 1U;
  };
};

// Records `object.Process(frame)` with the frame's format and asks the script.
uint32_t ProcessFakeFrame(const void* object, zuwebrtc::AudioFrame& frame);

// Floats separated by ", ", each as short as it can be: 0.1, -0.
std::string FloatList(const float* values, int count);

// Records `object.SetEqGains(...)`.
void RecordEqGains(const void* object, const float* gains, bool flag);
