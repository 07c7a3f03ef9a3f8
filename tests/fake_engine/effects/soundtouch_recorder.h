#pragma once

#include <functional>

// What SoundTouch answers, where a test wants it to answer something else.
struct SoundTouchScript {
  // Fills `out` with at most `room` frames and answers how many; null: the library does.
  std::function<unsigned(float* out, unsigned room)> receive = nullptr;

  // The tempo; null: the library's.
  std::function<float()> bpm = nullptr;
};
