#pragma once

#include <cstddef>
#include <vector>

#include "desktop/enhancement/parts/level_control.h"

namespace desktop {

// Level control of 16-bit blocks of 10 ms in place, off at first. Allocates in the constructor
// only.
class BlockGain {
 public:
  // rate: 8000 to 48000 Hz; channels: 1 or 2. Other formats pass unchanged, with one line in the
  // log.
  BlockGain(int rate, int channels);

  // Off, every bit passes unchanged. On starts afresh unless it was on.
  void Enable(bool on);

  // Processes exactly trunc(rate * channels / 100) interleaved samples.
  void Process(short* samples, bool learn);

 private:
  // The samples of one block; 0 for a format that passes.
  const size_t m_samples;
  const int m_samplesPerSecond;
  bool m_on = false;
  LevelControl m_level;
  std::vector<float> m_block;
};

}  // namespace desktop
