#include "desktop/effects/voice/voice_recipe.h"

#include <algorithm>

namespace desktop {
namespace {

constexpr BiquadShape LowPass(double frequency) { return {BiquadKind::kLowPass, frequency}; }
constexpr BiquadShape HighPass(double frequency) { return {BiquadKind::kHighPass, frequency}; }
constexpr BiquadShape Peak(double frequency, double q, double gainDb) {
  return {BiquadKind::kPeak, frequency, q, gainDb};
}
constexpr BiquadShape Bass(double frequency, double gainDb) {
  return {BiquadKind::kLowShelf, frequency, 0.707, gainDb};
}
constexpr BiquadShape Treble(double frequency, double gainDb) {
  return {BiquadKind::kHighShelf, frequency, 0.707, gainDb};
}

// s: the strength, above 0.
VoiceRecipe ModeAt(VoiceBeautifyOption mode, double s) {
  VoiceRecipe recipe;
  switch (mode) {
    case mode1:
      recipe.filters = {Bass(250, 6 * s), Treble(3500, -6 * s)};
      break;
    case mode2:
      recipe.filters = {Bass(120, -9 * s), Peak(3000, 0.8, 6 * s), Treble(8000, 6 * s)};
      break;
    case mode3:
      recipe.semitones = -2 * s;
      recipe.filters = {Bass(180, 4 * s)};
      break;
    case mode4:
      recipe.semitones = 2 * s;
      recipe.filters = {Bass(250, -3 * s), Treble(4000, 4 * s)};
      break;
    case mode5:
      recipe.filters = {Bass(250, 3 * s), Peak(1200, 0.7, -4 * s)};
      recipe.doubleMs = {23, 41};
      recipe.doubleGain = 0.8 * s;
      recipe.levelDb = -3 * s;
      break;
    case mode6:
      recipe.roomSeconds = 1.8;
      recipe.filters = {Treble(5000, 3 * s)};
      recipe.roomDb = -4 - 30 * (1 - s);
      recipe.levelDb = -1 * s;
      break;
  }
  return recipe;
}

}  // namespace

VoiceRecipe RecipeOf(VoiceEffectOption effect) {
  switch (effect) {
    case VeoEthereal:
      return {.filters = {HighPass(350), HighPass(350), Treble(4000, 6)},
              .roomSeconds = 2.5,
              .roomDb = -3,
              .levelDb = -1};
    case VeoThriller:
      return {.semitones = -2,
              .filters = {LowPass(2200)},
              .tremoloHz = 6,
              .tremoloDepth = 0.6,
              .echoMs = 190,
              .echoGain = 0.35,
              .levelDb = 1};
    case VeoLuBan:
      return {.semitones = 4,
              .filters = {HighPass(300), LowPass(4500), Peak(1600, 1, 6)},
              .levelDb = -2};
    case VeoLorie:
      return {.semitones = 9, .filters = {HighPass(200), Treble(4000, 3)}};
    case VeoUncle:
      return {.semitones = -3, .filters = {Bass(220, 4), Treble(4000, -4)}};
    case VeoDieFat:
      return {.semitones = -5, .filters = {Bass(200, 3), LowPass(1300)}};
    case VeoBadBoy:
      return {.semitones = 6, .filters = {HighPass(250), Peak(2800, 1.2, 9)}};
    case VeoWarCraft:
      return {.semitones = -7, .filters = {Bass(160, 4)}, .drive = 3, .levelDb = -4};
    case VeoHeavyMetal:
      return {.filters = {HighPass(150), Peak(1500, 0.8, 6)}, .drive = 12, .levelDb = -8};
    case VeoCold:
      return {.semitones = -1,
              .filters = {HighPass(180), Peak(450, 1.5, 6), Peak(1700, 0.8, -12), LowPass(2600)}};
    case VeoHeavyMechinery:
      return {.semitones = -4,
              .filters = {HighPass(150), Peak(2600, 1.5, 10)},
              .ringMs = 7,
              .ringGain = 0.7,
              .tremoloHz = 38,
              .tremoloDepth = 0.5};
    case VeoTrappedBeast:
      return {.semitones = -6,
              .filters = {Bass(250, 3), LowPass(3000)},
              .drive = 2,
              .tremoloHz = 24,
              .tremoloDepth = 0.6,
              .roomSeconds = 1.6,
              .roomDb = -9};
    case VeoPowerCurrent:
      return {.filters = {HighPass(600), Peak(2500, 1, 5)},
              .tremoloHz = 12.5,
              .tremoloDepth = 0.85,
              .tremoloChops = true,
              .levelDb = 4};
    case VeoNone:
      break;
  }
  return {};
}

VoiceRecipe RecipeOf(VoiceBeautifyOption mode, double strength, double semitones) {
  const double s = std::clamp(strength, 0.0, 1.0);
  VoiceRecipe recipe = s > 0 ? ModeAt(mode, s) : VoiceRecipe();
  recipe.semitones = std::clamp(recipe.semitones + semitones, -7.0, 12.0);
  return recipe;
}

}  // namespace desktop
