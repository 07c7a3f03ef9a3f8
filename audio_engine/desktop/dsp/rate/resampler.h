#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/dsp/rate/polyphase_filter.h"

namespace desktop {

// Brings interleaved 16-bit audio from one rate and channel count to another. To mono is the mean
// of all channels, mono to several is copies, else the first channels are kept and further ones are
// silent. The rate is changed by a bank of polyphase filters (Crochiere and Rabiner, "Multirate
// Digital Signal Processing", 1983). Samples beyond full scale are limited. Nothing is allocated
// after construction. Belongs to one thread at a time.
class Resampler {
 public:
  // The ratio of the rates is sourceRate : targetRate; two block lengths do as well, and then one
  // block in gives exactly one block out. maxFrames: the longest input of one call.
  Resampler(uint32_t sourceRate, uint32_t sourceChannels, uint32_t targetRate,
            uint32_t targetChannels, size_t maxFrames);
  Resampler(const Resampler&) = delete;
  Resampler& operator=(const Resampler&) = delete;

  // False when a rate, a channel count or maxFrames is 0 or absurd, or memory is short; Convert
  // then gives nothing.
  bool IsOpen() const { return m_open; }

  // A good length for blocks of a source that are converted one after the other: at most 1024
  // frames, and fewer at low rates, so that no more than 4096 frames of the target come out, or a
  // second of it.
  static size_t BlockFrames(uint32_t sourceRate, uint32_t targetRate);

  // The most frames that one call can give for `frames` frames.
  size_t MaxFramesFor(size_t frames) const;

  // Converts `frames` frames, at most maxFrames, and returns how many came out. `target` has room
  // for MaxFramesFor(frames) of them; it may be `source`, which is read before anything is
  // written.
  size_t Convert(const short* source, size_t frames, short* target);

  // How much later a sound comes out than it went in, in frames of the target; 0 for equal rates.
  size_t LagFrames() const;

 private:
  float* Channel(size_t channel) { return &m_samples[channel * (m_history + m_maxFrames)]; }
  void Take(const short* source, size_t frames);
  short* Give(short* target);

  // The two rates, divided by their greatest common divisor.
  const uint32_t m_sourceRate;
  const uint32_t m_targetRate;
  const size_t m_sourceChannels;
  const size_t m_targetChannels;
  const size_t m_maxFrames;

  // The rate is changed in the fewer channels of source and target.
  const size_t m_channels;

  // Empty for equal rates.
  std::optional<PolyphaseFilter> m_filter;

  // Channel after channel: m_history frames of earlier calls, then the m_taken of the last one.
  std::vector<float> m_samples;
  size_t m_history = 0;
  size_t m_taken = 0;

  // Where the next target frame lies: m_phase / m_targetRate of a frame after this one of the
  // frames of the call.
  size_t m_next = 0;
  uint32_t m_phase = 0;
  bool m_open = false;
};

}  // namespace desktop
