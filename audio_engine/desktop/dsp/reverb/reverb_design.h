#pragma once

#include <array>

#include "engine_api/effects/effect_parameters.h"

namespace desktop {

constexpr int kReverbLines = 16;
constexpr int kReverbDiffusers = 4;  // Per channel.

// What each delay line of the room does to a sound on its way: gain, then less highs, then less
// lows.
struct ReverbLine {
  int delay = 1;  // Samples.

  // The gain in the middle of the spectrum, and 1 - gain of the highest and lowest frequencies.
  float gain = 0;
  float highLoss = 0;
  float lowLoss = 0;
};

// A reverberation at some rate.
struct ReverbDesign {
  std::array<ReverbLine, kReverbLines> lines;

  // The delays of the diffusers in samples, and their coefficient.
  std::array<std::array<int, kReverbDiffusers>, 2> diffusers{};
  float diffusion = 0;
  int preDelay = 0;  // Samples.

  // The one-pole coefficients of the two corners.
  float highStep = 1;
  float lowStep = 0;
  float outputHighLoss = 0;

  // The energy of one output's response to white noise in all inputs.
  double tailEnergy = 1;
};

// The parameter with every field in its range.
NreverbFv3Parameter InRange(const NreverbFv3Parameter& parameter);

// Lengths, gains and losses. The lines lose 60 dB per ReverbTime at 750 Hz (Jot and Chaigne,
// Digital delay networks for designing artificial reverberators, 1991); the energy of the tail
// follows from what they lose per pass.
ReverbDesign DesignReverb(const NreverbFv3Parameter& parameter, int sampleRate);

}  // namespace desktop
