#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/effects/karaoke/karaoke_chain.h"
#include "desktop/files/converted_source.h"

namespace desktop {

// What a karaoke voice goes through on its way into a mix.
struct VoiceSettings {
  // Positive: the voice comes later.
  int offsetMs = 0;
  bool equalizer = false;
  EqGains gains = {};
  bool reverb = false;
  std::optional<NreverbFv3Parameter> reverbParameter;
  bool limiter = false;
  std::optional<LimiterParam> limiterParameter;
};

// Mixes a voice, through the karaoke chain, with its accompaniment: in floats up to a limiter over
// the sum. The delay of both limiters is taken out. Belongs to one thread.
class KaraokeMix {
 public:
  // Both sources give `format`.
  KaraokeMix(std::unique_ptr<ConvertedSource> voice, std::unique_ptr<ConvertedSource> music,
             DeviceFormat format, const VoiceSettings& settings);

  // Returns the whole length in frames, as far as the files tell: that of the accompaniment, or of
  // the shifted voice where that is longer.
  size_t Frames() const { return m_length; }

  static constexpr size_t kMaxFrames = 256;

  // Replaces `samples` by the next frames, interleaved, and returns how many there are: at most
  // kMaxFrames, and 0 at the end. Throws when there is no memory.
  size_t Next(short* samples);

 private:
  // A file with silence before and after it.
  struct Track {
    std::unique_ptr<ConvertedSource> source;
    // Frames of silence before the file that are still to come.
    size_t silence;
    // Frames of silence and file so far.
    size_t frames = 0;
    bool ended = false;
  };
  using Block = float[2][kMaxFrames];

  static void Skip(Track& track, size_t frames, DeviceFormat format);
  void Read(Track& track, Block& block);
  void MixBlock();
  size_t End() const;

  const DeviceFormat m_format;
  KaraokeChain m_chain;
  Limiter m_limiter;
  Track m_voice;
  Track m_music;
  // Counted in frames: the length of the files, as they tell it, how late the voice is after its
  // chain and the mix after its limiter, and how much was mixed.
  size_t m_length;
  size_t m_chainLatency;
  size_t m_latency;
  size_t m_mixed = 0;
  std::vector<short> m_samples;
  Block m_mix;
};

}  // namespace desktop
