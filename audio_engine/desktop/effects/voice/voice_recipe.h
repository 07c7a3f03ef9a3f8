#pragma once

#include <array>

#include "desktop/dsp/filters/biquad.h"

namespace desktop {

// What is done to a voice, in this order; what is 0 is left out, and a recipe that has only zeros
// changes no bit.
struct VoiceRecipe {
  // How far the pitch moves, -7 to 12.
  double semitones = 0;

  // How far the formants move, semitones. At 0 they stay, wherever the pitch goes.
  double formants = 0;
  std::array<BiquadShape, 4> filters = {};

  // The gain into saturation, relative to the level of the voice.
  double drive = 0;

  // A comb that resounds (a pipe, a sheet of metal): its delay, and its feedback, below 1.
  double ringMs = 0;
  double ringGain = 0;

  // How often and by which share, 0 to 1, the level swings: as a sine, or as a switch.
  double tremoloHz = 0;
  double tremoloDepth = 0;
  bool tremoloChops = false;

  // An echo: its delay, at most 500 ms, and its feedback, below 1.
  double echoMs = 0;
  double echoGain = 0;

  // Two more voices after the first, by at most 500 ms, and how loud they are.
  std::array<double, 2> doubleMs = {};
  double doubleGain = 0;

  // The reverberation time, and the level of the tail.
  double roomSeconds = 0;
  double roomDb = 0;

  // Makes up for what the rest does to the level, ahead of the slow gain that does it for any
  // voice.
  double levelDb = 0;

  bool operator==(const VoiceRecipe&) const = default;
};

// The filters that recipes are made of.
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

}  // namespace desktop
