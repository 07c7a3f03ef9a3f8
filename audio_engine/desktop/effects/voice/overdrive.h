#pragma once

#include <cstddef>
#include <vector>

#include "desktop/dsp/rate/polyphase_filter.h"

namespace desktop {

// Saturates one channel in proportion to its level, so that a quiet voice sounds as rough as a loud
// one (a waveshaper as in Zölzer, "DAFX", 2011). It works at several times the rate, so that what
// it adds above half the rate is taken out and does not fold back.
class Overdrive {
 public:
  // drive: the gain into saturation, relative to the level. Throws when there is no memory.
  Overdrive(double drive, int rate);

  // Processes at most kMaxEffectFrames frames in place.
  void Process(float* samples, size_t frames);

  // Frames until what goes in comes out.
  size_t Latency() const;

 private:
  float Shape(float sample);

  const size_t m_factor;
  const float m_drive;
  const float m_full;

  // The share of the level that is left after one sample at the higher rate.
  const float m_fall;
  float m_level = 0;
  PolyphaseFilter m_up;
  PolyphaseFilter m_down;

  // What the filters look back at, and then the block at hand.
  std::vector<float> m_slow;
  std::vector<float> m_fast;
};

}  // namespace desktop
