#include "desktop/dsp/filters/equalizer_design.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>

namespace {

// The gain in dB of a bell of `gain` dB where the tangent of half the angle is `times` that of the
// centre: that of s^2 + s A / Q + 1 over s^2 + s / (A Q) + 1 with A = 10^(gain / 40).
double GainAt(const desktop::EqualizerBand& bell, double gain, double times) {
  const double amplitude = std::pow(10.0, gain / 40);
  const double real = 1 - times * times;
  const double up = std::hypot(real, times * amplitude / bell.q);
  const double down = std::hypot(real, times / amplitude / bell.q);
  return 20 * std::log10(up / down);
}

// Half of a bell's decibels are left at its two edges, which lie an octave apart.
TEST(EqualizerDesign, MakesBellsAnOctaveWide) {
  constexpr double kCentres[] = {16, 31.5, 63, 125, 250, 500, 1000};
  for (const int rate : {16000, 44100, 48000}) {
    const desktop::EqualizerDesign design = desktop::DesignEqualizer(rate);
    for (size_t i = 0; i < std::size(kCentres); ++i) {
      const desktop::EqualizerBand& bell = design.band[i];
      for (const double octaves : {-0.5, 0.5}) {
        const double edge = kCentres[i] * std::exp2(octaves);
        const double times = std::tan(M_PI * edge / rate) / bell.centreTangent;
        EXPECT_NEAR(GainAt(bell, 12, times), 6, 0.2) << edge << " Hz at " << rate;
      }
    }
  }
}

}  // namespace
