#pragma once

#include <functional>

#include "engine_api/enhancement/voice_detection.h"

// What the fake's detectors say.
struct VoiceDetectionScript {
  // At first every block is unknown.
  std::function<VADResultKind(const short* samples, unsigned count)> detect =
      [](const short*, unsigned) { return vadResultIsUnknown; };
};
