#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "desktop/enhancement/parts/voicing_detector.h"

namespace desktop {

// What the last 300 ms were, where they had no pitch: a noise that keeps its level, or a clap or a
// rattle, which does not. Speech has a pitch or changes its level, and its consonants are shorter.
// Takes blocks of 10 ms; no look-ahead; allocates in the constructor only.
class SteadyNoise {
 public:
  // rate in Hz; blocks are `hop` samples long.
  SteadyNoise(int rate, size_t hop) : m_voicing(rate, hop) {}

  // Takes the next block; true when the last 300 ms were nothing but a steady noise.
  bool Process(std::span<const float> samples);

  // Whether the level has fallen steeply within the last 300 ms, none of which had a pitch.
  bool Rattles() const;

 private:
  bool WithoutVoice() const { return m_withoutVoice >= m_levels.size(); }
  float Deviation() const;

  VoicingDetector m_voicing;

  // Levels in dB, of which the oldest is at m_next.
  std::array<float, 30> m_levels = {};
  size_t m_next = 0;

  // How many blocks in a row had no pitch.
  size_t m_withoutVoice = 0;
};

}  // namespace desktop
