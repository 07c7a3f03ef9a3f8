#include <gtest/gtest.h>

#include <vector>

#include "beautified.h"
#include "support/signals.h"
#include "support/tone.h"
#include "support/voice.h"

// What each mode does to the colour of a voice.

namespace {

// Gain in dB of an octave against that of another one.
double Tilt(VoiceBeautifyOption mode, float strength, double octave, double against) {
  const std::vector<double> in = WhiteNoise(48000 * 4, 0.1, 1);
  const std::vector<double> out =
      ToDoubles(Process(*Enabled(mode, strength, 0), ToShorts(in), 48000));
  const auto gain = [&](double centre) {
    return Decibels(Rms(OctaveBand(out, centre, 48000)) / Rms(OctaveBand(in, centre, 48000)));
  };
  return gain(octave) - gain(against);
}

// Peaks are not as wide as an octave, and what doubles and halls add has a colour of its own.
TEST(VoiceBeautify, TiltsEachModeAsMuchAsItsStrengthSays) {
  struct Band {
    VoiceBeautifyOption mode;
    double octave, against, decibels, allowed;
  };
  const Band bands[] = {
      {mode1, 63, 1000, 6, 0.3},    {mode1, 11000, 1000, -6, 0.3}, {mode2, 40, 700, -9, 0.6},
      {mode2, 3000, 700, 5, 1},     {mode2, 15000, 700, 6, 1},     {mode3, 63, 1000, 4, 0.3},
      {mode4, 63, 1000, -3, 0.3},   {mode4, 13000, 1000, 4, 0.3},  {mode5, 63, 8000, 3, 0.8},
      {mode5, 1200, 8000, -3.5, 1}, {mode6, 14000, 1000, 3, 0.9},
  };
  for (const Band& band : bands) {
    for (const float strength : {1.0F, 0.5F}) {
      const auto share = static_cast<double>(strength);
      EXPECT_NEAR(Tilt(band.mode, strength, band.octave, band.against), share * band.decibels,
                  share * band.allowed)
          << "mode " << band.mode + 1 << ", " << band.octave << " Hz";
    }
  }
}

TEST(VoiceBeautify, MakesTheHallSofterWithItsStrength) {
  const auto hall = [](float strength) {
    std::vector<double> in = WhiteNoise(16000, 0.1, 1);
    in.resize(32000);
    const std::vector<short> out = Process(*Enabled(mode6, strength, 0), ToShorts(in), 16000);
    return Decibels(Rms(ToDoubles(std::vector<short>(out.begin() + 18000, out.begin() + 24000))));
  };
  EXPECT_NEAR(hall(1) - hall(0.75), 7.5, 0.75);
  EXPECT_NEAR(hall(1) - hall(0.5), 15, 1.5);
}

// What is too loud on one side is made softer on both, so that nothing moves.
TEST(VoiceBeautify, LimitsBothSidesAlike) {
  const std::vector<short> loud = AtFullScale(Babble(44100, 2));
  std::vector<short> soft = loud;
  for (short& sample : soft) sample = static_cast<short>(sample / 8);
  const std::vector<short> out = Process(*Enabled(mode2, 1, 0), Interleaved(loud, soft), 44100, 2);
  const double left = Rms(ToDoubles(Channel(out, 2, 0)));
  const double right = Rms(ToDoubles(Channel(out, 2, 1)));
  EXPECT_NEAR(Decibels(left / right), Decibels(8), 0.02);
}

}  // namespace
