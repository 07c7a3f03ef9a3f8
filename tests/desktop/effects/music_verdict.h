#pragma once

#include <vector>

#include "engine_api/effects/audio_music_detector.h"

// What a detector said of a sound.
struct Verdict {
  double share = 0;  // Of the blocks after 3 s that count as music.
  int changes = 0;   // Of the decision, all in all.
};

// Plays a mono sound to a detector in blocks of 10 ms. Each channel after the first has `phase`
// times the first one.
Verdict Listen(AudioMusicDetector& detector, const std::vector<double>& sound, int rate,
               int channels, int phase = 1);

// Plays it to a new one.
Verdict Listen(const std::vector<double>& sound, int rate, int channels = 1);
