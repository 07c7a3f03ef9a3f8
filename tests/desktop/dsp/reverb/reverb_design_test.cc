#include "desktop/dsp/reverb/reverb_design.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// By how much faster the end of the spectrum decays than ReverbTime says, where a line keeps
// `share` of it beside its gain.
double TimesAsFast(const desktop::ReverbLine& line, float share, int rate, double seconds) {
  const double asked = 3 * std::log(10.0) * line.delay / (rate * seconds);
  return -std::log(static_cast<double>(line.gain * share)) / asked;
}

// Full damping adds four times the loss. That at 750 Hz is taken off again, a few hundredths of it.
TEST(ReverbDesign, DampsTheEndsOfTheSpectrumFiveTimesAsFast) {
  for (const int rate : {16000, 48000}) {
    NreverbFv3Parameter parameter = {1, -12, 0, 0.5f, 1, 0, 0, 10, 1, 10};
    for (const desktop::ReverbLine& line : desktop::DesignReverb(parameter, rate).lines) {
      EXPECT_NEAR(TimesAsFast(line, 1 - line.highLoss, rate, 10), 5, 0.3);
      EXPECT_EQ(line.lowLoss, 0);
    }
    parameter.Damp1 = 0;
    parameter.Damp2 = 1;
    for (const desktop::ReverbLine& line : desktop::DesignReverb(parameter, rate).lines) {
      EXPECT_NEAR(TimesAsFast(line, 1 - line.lowLoss, rate, 10), 5, 0.3);
      EXPECT_EQ(line.highLoss, 0);
    }
  }
}

}  // namespace
