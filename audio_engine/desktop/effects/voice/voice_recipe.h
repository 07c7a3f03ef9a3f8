#pragma once

#include <array>

#include "desktop/dsp/filters/biquad.h"
#include "engine_api/effects/voice_beautify.h"
#include "engine_api/effects/voice_changer.h"

namespace desktop {

// What is done to a voice, in this order; what is 0 is left out, and a recipe that has only zeros
// changes no bit.
struct VoiceRecipe {
  double semitones = 0;  // -7 to 12.
  std::array<BiquadShape, 4> filters = {};
  double drive = 0;                     // Gain into saturation, relative to the level of the voice.
  double ringMs = 0;                    // Delay of a comb that resounds (a pipe, a sheet of metal),
  double ringGain = 0;                  // and its feedback, below 1.
  double tremoloHz = 0;                 // How often the level swings,
  double tremoloDepth = 0;              // by which share, 0 to 1,
  bool tremoloChops = false;            // and whether as a switch instead of a sine.
  double echoMs = 0;                    // At most 500.
  double echoGain = 0;                  // Feedback, below 1.
  std::array<double, 2> doubleMs = {};  // More voices right after the first, at most 500 ms,
  double doubleGain = 0;                // as loud as this.
  double roomSeconds = 0;               // Reverberation time,
  double roomDb = 0;                    // and the level of the tail.
  double levelDb = 0;                   // Makes up for what the rest does to the level.

  bool operator==(const VoiceRecipe&) const = default;
};

// Each effect and mode as its header describes it; an unknown one changes nothing.
VoiceRecipe RecipeOf(VoiceEffectOption effect);

// strength: 0 to 1. semitones: added to the pitch of the mode, the sum clamped to -7..12.
VoiceRecipe RecipeOf(VoiceBeautifyOption mode, double strength, double semitones);

}  // namespace desktop
