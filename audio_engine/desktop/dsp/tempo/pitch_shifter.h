#pragma once

#include <SoundTouch.h>

#include <cstddef>
#include <vector>

namespace desktop {

// Moves the pitch of a stream by libsoundtouch (time-domain stretching by overlap-add, then a
// change of rate) and gives one sample out for each one in, always. Filled with as much silence as
// the library asks for at first: its output lags by 45 to 65 ms, by the pitch.
class PitchShifter {
 public:
  // semitones: -7 to 12. rate: Hz, 8000 to 192000. channels: 1 or 2. Throws when there is no memory
  // or when the library refuses the format.
  PitchShifter(double semitones, int rate, int channels);

  // Shifts rows[0..channels) in place, at most kMaxEffectFrames frames at once.
  void Process(float* const* rows, size_t frames);

  // Frames until what goes in comes out, as far as the library tells.
  size_t Latency() const { return m_latency; }

 private:
  soundtouch::SoundTouch m_shifter;
  const size_t m_channels;
  size_t m_latency = 0;

  // Interleaved.
  std::vector<float> m_block;
};

}  // namespace desktop
