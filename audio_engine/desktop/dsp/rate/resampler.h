#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/dsp/rate/polyphase_filter.h"

namespace desktop {

// Brings interleaved 16-bit audio from one rate and channel count to another. To mono is the mean
// of all channels, mono to several is copies, else the first channels are kept and further ones are
// silent. Samples beyond full scale are limited. Nothing is allocated after construction. Belongs
// to one thread at a time.
class Resampler {
 public:
  // The ratio of the rates is sourceRate : targetRate; two block lengths do as well, and then one
  // block in gives exactly one block out. maxFrames: the longest input of one call, in frames
  // (samples per channel).
  Resampler(uint32_t sourceRate, uint32_t sourceChannels, uint32_t targetRate,
            uint32_t targetChannels, uint32_t maxFrames);
  Resampler(const Resampler&) = delete;
  Resampler& operator=(const Resampler&) = delete;

  // False when a rate, a channel count or maxFrames is 0 or absurd, or memory is short; Convert
  // then gives nothing.
  bool IsOpen() const { return m_open; }

  // How many frames of a source to convert at once where pieces are as well: at most 1024, and
  // fewer at low rates, so that no more than 4096 frames of the target come out, or a second of it.
  static uint32_t PieceFrames(uint32_t sourceRate, uint32_t targetRate);

  // The most frames that one call can give for `frames` frames.
  uint32_t MostFramesFor(uint32_t frames) const;

  // Converts `frames` frames, at most maxFrames, and returns how many came out. `target` has room
  // for MostFramesFor(frames) of them; it may be `source`, which is read before anything is
  // written.
  uint32_t Convert(const short* source, uint32_t frames, short* target);

  // How much later a sound comes out than it went in, in frames of the target; 0 for equal rates.
  uint32_t LagFrames() const;

 private:
  float* Channel(uint32_t channel) { return &m_samples[channel * (m_history + m_maxFrames)]; }
  void Take(const short* source, uint32_t frames);
  short* Give(short* target);

  const uint32_t m_sourceRate;  // Both without a common divisor.
  const uint32_t m_targetRate;
  const uint32_t m_sourceChannels;
  const uint32_t m_targetChannels;
  const uint32_t m_maxFrames;
  const uint32_t m_channels;                // While the rate is changed: the fewer of both.
  std::optional<PolyphaseFilter> m_filter;  // None for equal rates.
  std::vector<float> m_samples;             // Channel after channel: m_history earlier ones
  size_t m_history = 0;                     // and
  size_t m_taken = 0;                       // the new ones of the last call.
  size_t m_next = 0;     // The next target frame follows this one of the new frames
  uint32_t m_phase = 0;  // by m_phase / m_targetRate of a frame.
  bool m_open = false;
};

}  // namespace desktop
