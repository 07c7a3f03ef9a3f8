#pragma once

#include <algorithm>
#include <vector>

#include "fake_engine/enhancement/voice_detection.h"
#include "fake_engine/fake_engine.h"

// What the tests of voice activity feed in, and what the detector answers.

using Samples = std::vector<short>;

// Frames of `length` samples, all 1 in the first, all 2 in the second, and so on.
inline Samples Frames(int frames, size_t length) {
  Samples samples;
  for (int i = 1; i <= frames; ++i) samples.insert(samples.end(), length, static_cast<short>(i));
  return samples;
}

// Answers with these kinds, one after the other, the last one for ever.
inline void Answer(FakeEngine& engine, std::vector<int> kinds) {
  engine.script<VoiceDetectionScript>().detect = [kinds, next = size_t{0}](const short*,
                                                                           unsigned) mutable {
    const int kind = kinds[std::min(next, kinds.size() - 1)];
    ++next;
    return static_cast<VADResultKind>(kind);
  };
}
