#pragma once

#include <array>
#include <optional>
#include <vector>

#include "desktop/dsp/dynamics/limiter.h"
#include "desktop/dsp/filters/biquad.h"
#include "desktop/dsp/reverb/reverb.h"
#include "desktop/dsp/sample_blocks.h"
#include "desktop/dsp/tempo/pitch_shifter.h"
#include "desktop/effects/voice/formant_mover.h"
#include "desktop/effects/voice/level_match.h"
#include "desktop/effects/voice/overdrive.h"
#include "desktop/effects/voice/voice_recipe.h"

namespace desktop {

// A voice recipe at work on a stream of planar floats of full scale 1: pitch shift, equaliser
// (Bristow-Johnson), waveshaper and tremolo (Zölzer, "DAFX", 2011), combs and reverberation
// (Schroeder, "Natural sounding artificial reverberation", 1962), in the order of the recipe. The
// level stays near that of the voice, and peaks that become too loud are made softer, so that
// nothing clips.
class VoiceChain {
 public:
  // rate: Hz, 8000 to 192000. channels: 1 or 2. Throws when there is no memory.
  VoiceChain(const VoiceRecipe& recipe, int rate, int channels);

  // Processes rows[0..channels) in place, at most kMaxEffectFrames frames at once. The caller holds
  // a DenormalGuard.
  void Process(float* const* rows, size_t frames);

  // Frames until what goes in comes out.
  size_t Latency() const;

 private:
  // The last samples of a channel.
  struct Line {
    std::vector<float> samples;
    size_t next = 0;

    // What was put so many frames ago.
    float Before(size_t frames) const;
    void Put(float sample);
  };
  struct Channel {
    std::array<Biquad, 4> filters;
    std::optional<Overdrive> overdrive;
    Line ring;
    Line echo;
    Line past;
  };

  void Echo(Line& line, double gain, float* row, size_t frames) const;
  void Double(Channel& channel, float* row, size_t frames) const;
  void Tremolo(float* const* rows, size_t frames);

  const VoiceRecipe m_recipe;
  const int m_rate;
  const size_t m_channels;
  std::optional<PitchShifter> m_shifter;
  std::optional<FormantMover> m_formants;
  std::array<Channel, kMaxEffectChannels> m_channel;
  std::optional<Reverb> m_room;
  std::optional<LevelMatch> m_level;

  // In turns.
  double m_tremoloPhase = 0;
  float m_gain = 1;
  Limiter m_limiter;
};

}  // namespace desktop
