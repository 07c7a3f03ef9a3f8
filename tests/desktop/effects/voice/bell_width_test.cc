#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "changed_voice.h"
#include "support/signals.h"

namespace {

// How many dB a narrow band of white noise stands above those at two thirds of its frequency and at
// half as much again: little for a wide bell in the colour, and much for a narrow one.
template <typename Voice>
double Bell(Voice voice, double centre) {
  const Doubles out = Changed(voice, ToShorts(WhiteNoise(16 * kRate, 0.2, 1)));
  constexpr size_t kPart = kRate / 10;
  const auto power = [&](double hertz) {
    const std::span<const double> sound = Settled(out);
    const double step = std::max(10.0, hertz / 60);
    double sum = 0;
    int lines = 0;
    for (double at = 0.94 * hertz; at < 1.06 * hertz; at += step, ++lines) {
      for (size_t part = 0; part + kPart <= sound.size(); part += kPart) {
        const double amplitude = AmplitudeAt(sound.subspan(part, kPart), at, kRate);
        sum += amplitude * amplitude;
      }
    }
    return 10 * std::log10(sum / lines);
  };
  return power(centre) - (power(centre / 1.5) + power(centre * 1.5)) / 2;
}

TEST(VoiceCharacter, HasBellsAsWideAsTheyShouldBe) {
  EXPECT_NEAR(Bell(VeoLuBan, 1600), 3, 0.35);
  EXPECT_NEAR(Bell(VeoBadBoy, 2800), 5.9, 0.4);
  EXPECT_NEAR(Bell(VeoHeavyMetal, 1500), 1.6, 0.28);
  EXPECT_NEAR(Bell(VeoCold, 450), 4.4, 0.3);
  EXPECT_NEAR(Bell(VeoCold, 1700), -3.4, 0.5);
  EXPECT_NEAR(Bell(VeoHeavyMechinery, 2600), 7.5, 0.45);
  EXPECT_NEAR(Bell(VeoPowerCurrent, 2500), 2.4, 0.33);
  EXPECT_NEAR(Bell(mode2, 3000), 2.6, 0.38);
  EXPECT_NEAR(Bell(mode5, 1200), -0.95, 0.2);
}

}  // namespace
