#pragma once

#include <array>

#include "engine_api/effects/effect_parameters.h"

namespace desktop {

constexpr int kReverbLines = 16;
constexpr int kReverbDiffusers = 4;  // Per channel.

// What each delay line of the room does to a sound on its way: gain, then less highs, then less
// lows.
struct ReverbLine {
  int delay = 1;       // Samples.
  float gain = 0;      // In the middle of the spectrum.
  float highLoss = 0;  // 1 - gain of the highest frequencies.
  float lowLoss = 0;   // 1 - gain of the lowest frequencies.
};

// A reverberation at some rate.
struct ReverbDesign {
  std::array<ReverbLine, kReverbLines> lines;
  std::array<std::array<int, kReverbDiffusers>, 2> diffusers{};  // Delays in samples.
  float diffusion = 0;                                           // Their coefficient.
  int preDelay = 0;                                              // Samples.
  float highStep = 1;  // One-pole coefficients of the two corners.
  float lowStep = 0;
  float outputHighLoss = 0;
  double tailEnergy = 1;  // Of the response of one output to white noise in all inputs.
};

// The parameter with every field in its range.
NreverbFv3Parameter InRange(const NreverbFv3Parameter& parameter);

// Lengths, gains and losses. The lines lose 60 dB per ReverbTime at 750 Hz (Jot and Chaigne,
// Digital delay networks for designing artificial reverberators, 1991); the energy of the tail
// follows from what they lose per pass.
ReverbDesign DesignReverb(const NreverbFv3Parameter& parameter, int sampleRate);

}  // namespace desktop
