#pragma once

#include <array>
#include <cstddef>

namespace desktop {

constexpr int kEqualizerBands = 11;

// One bell of the equaliser at some rate.
struct EqualizerBand {
  double centreTangent = 0;  // tan(pi * centre / rate).
  double q = 1;
};

// The bells of all bands at some rate; the last ones may be left out.
struct EqualizerDesign {
  size_t bands = 0;
  std::array<EqualizerBand, kEqualizerBands> band;
};

// The bells that lie below 0.45 times the rate, each an octave wide.
EqualizerDesign DesignEqualizer(int sampleRate);

// The gains (dB) that the bells need so that their product has the `wanted` gains (dB) at the
// centres. Bells overlap: used as they are, the wanted gains would add up to several dB too much.
// Newton's method with damped steps; within 0.01 dB for all gains of -24 to 24 dB.
std::array<double, kEqualizerBands> SolveBandGains(
    const EqualizerDesign& design, const std::array<float, kEqualizerBands>& wanted);

}  // namespace desktop
