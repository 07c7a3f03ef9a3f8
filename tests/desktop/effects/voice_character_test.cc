#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <map>
#include <numbers>
#include <ostream>
#include <vector>

#include "engine_api/effects/voice_beautify.h"
#include "engine_api/effects/voice_changer.h"
#include "support/signals.h"
#include "support/tone.h"
#include "support/voice.h"
#include "voice/changed_voice.h"

// What each voice effect and each mode is said to do must be heard: every part of every recipe has
// a figure here that it alone makes.

namespace {

// How many dB an octave of white noise gains over another one.
template <typename Voice>
double Tilt(Voice voice, double centre, double other) {
  const Doubles in = WhiteNoise(4 * kRate, 0.2, 1);
  const Doubles out = Changed(voice, ToShorts(in));
  const auto gain = [&](double octave) {
    return Decibels(Rms(Settled(OctaveBand(out, octave, kRate))) /
                    Rms(Settled(OctaveBand(in, octave, kRate))));
  };
  return gain(centre) - gain(other);
}

// The levels of a noise in stretches of 5 ms, the mean is 1.
Doubles Envelope(VoiceEffectOption effect) {
  const Doubles out = Changed(effect, ToShorts(WhiteNoise(8 * kRate, 0.2, 1)));
  const std::span<const double> sound = Settled(out);
  Doubles levels;
  double mean = 0;
  for (size_t at = 0; at + 80 <= sound.size(); at += 80)
    levels.push_back(Rms(sound.subspan(at, 80)));
  for (const double level : levels) mean += level / static_cast<double>(levels.size());
  for (double& level : levels) level /= mean;
  return levels;
}

// By how much the level swings up and down, so many times a second.
double Tremolo(VoiceEffectOption effect, double hertz) {
  std::complex<double> sum = 0;
  const Doubles levels = Envelope(effect);
  for (size_t i = 0; i < levels.size(); ++i) {
    const double turns = hertz * 0.005 * static_cast<double>(i);
    sum += levels[i] * std::polar(2.0, 2 * std::numbers::pi * turns);
  }
  return std::abs(sum) / static_cast<double>(levels.size());
}

// The level after a burst of noise of 100 ms, so many ms after its start, for 40 ms, in dB of the
// loudest 40 ms.
template <typename Voice>
double After(Voice voice, int ms) {
  Doubles in = WhiteNoise(3 * kRate, 0.2, 1);
  std::fill(in.begin() + kRate / 10, in.end(), 0.0);
  const Doubles out = Changed(voice, ToShorts(in));
  double loudest = 0;
  size_t start = 0;
  for (size_t at = 0; at + 640 <= out.size(); at += 16) {
    loudest = std::max(loudest, Rms({&out[at], 640}));
  }
  while (Rms({&out[start], 160}) < 0.2 * loudest) start += 16;
  return Decibels((Rms({&out[start + static_cast<size_t>(16 * ms)], 640}) + 1e-6) / loudest);
}

// How like itself a noise is after so many ms.
template <typename Voice>
double Likeness(Voice voice, double ms) {
  const Doubles out = Changed(voice, ToShorts(WhiteNoise(8 * kRate, 0.2, 1)));
  const std::span<const double> sound = Settled(out);
  const auto lag = static_cast<size_t>(std::lround(ms * kRate / 1000));
  double product = 0, power = 0;
  for (size_t i = lag; i < sound.size(); ++i) {
    product += sound[i] * sound[i - lag];
    power += sound[i] * sound[i];
  }
  return product / power;
}

// The harmonics that a tone of 200 Hz, moved by so many semitones, has got.
double Roughness(VoiceEffectOption effect, double semitones) {
  const Doubles out = Changed(effect, Tone(200, 8000, kRate, 2 * kRate));
  return Thd({&out[kRate], 800}, 200 * std::exp2(semitones / 12), kRate);
}

// The first half second that is heard of a note, in dB of the note.
template <typename Voice>
double LevelAtTheStart(Voice voice) {
  const Shorts note = SungNote(160, kRate, 1);
  const Doubles out = Changed(voice, note);
  return Decibels(Rms({&out[2400], 8000}) / Rms(ToDoubles({&note[2400], 8000})));
}

// Ahead of the slow gain, which has not heard enough by then.
TEST(VoiceCharacter, IsAboutAsLoudAsTheVoiceFromTheStart) {
  for (int effect = VeoEthereal; effect <= VeoPowerCurrent; ++effect) {
    EXPECT_NEAR(LevelAtTheStart(static_cast<VoiceEffectOption>(effect)), 0, 4) << effect;
  }
  EXPECT_LT(LevelAtTheStart(VeoWarCraft), 3);
  EXPECT_LT(LevelAtTheStart(VeoHeavyMetal), 3);
  EXPECT_GT(LevelAtTheStart(VeoPowerCurrent), 0);
  EXPECT_LT(LevelAtTheStart(mode5), 0);
}

struct Octave {
  const char* part;
  VoiceEffectOption effect;
  double centre;

  // In dB of the octave around 1 kHz.
  double least;
  double most;
};

std::ostream& operator<<(std::ostream& out, const Octave& octave) { return out << octave.part; }

class VoiceColour : public testing::TestWithParam<Octave> {};

TEST_P(VoiceColour, IsHeard) {
  const double tilt = Tilt(GetParam().effect, GetParam().centre, 1000);
  EXPECT_GE(tilt, GetParam().least) << GetParam();
  EXPECT_LE(tilt, GetParam().most) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(
    , VoiceColour,
    testing::Values(
        Octave{"thin", VeoEthereal, 125, -24, -18}, Octave{"airy", VeoEthereal, 5000, 3.5, 6},
        Octave{"dark", VeoThriller, 5000, -20, -14}, Octave{"from a box", VeoLuBan, 125, -17, -12},
        Octave{"from a box", VeoLuBan, 5000, -12, -8}, Octave{"nasal", VeoLuBan, 500, -4.5, -2.5},
        Octave{"light", VeoLorie, 125, -8, -4.5}, Octave{"bright", VeoLorie, 5000, -3.5, -1},
        Octave{"more chest", VeoUncle, 125, 2.4, 4},
        Octave{"less edge", VeoUncle, 5000, -6.5, -3.5}, Octave{"heavy", VeoDieFat, 125, 3.4, 5.5},
        Octave{"muffled", VeoDieFat, 5000, -28, -20}, Octave{"cheeky", VeoBadBoy, 125, -12, -8},
        Octave{"nasal", VeoBadBoy, 2500, 4, 6.5}, Octave{"with weight", VeoWarCraft, 125, 1.2, 3},
        Octave{"without boom", VeoHeavyMetal, 125, -8.5, -5.5},
        Octave{"in the middle", VeoHeavyMetal, 500, -3.2, -1.5},
        Octave{"without chest", VeoCold, 125, -1.5, 2}, Octave{"blocked", VeoCold, 500, 5.5, 8},
        Octave{"blocked", VeoCold, 1600, -6.5, -3.5}, Octave{"dull", VeoCold, 5000, -15, -11},
        Octave{"thin metal", VeoHeavyMechinery, 125, -6, -3},
        Octave{"thin metal", VeoHeavyMechinery, 2500, 4.2, 7},
        Octave{"deep chest", VeoTrappedBeast, 125, 1.2, 3},
        Octave{"in a cave", VeoTrappedBeast, 5000, -14, -9.5},
        Octave{"thin", VeoPowerCurrent, 125, -26, -19},
        Octave{"sharp", VeoPowerCurrent, 2500, 2, 4.2}));

struct ModeOctave {
  const char* part;
  VoiceBeautifyOption mode;
  double centre;
  double least;
  double most;
};

std::ostream& operator<<(std::ostream& out, const ModeOctave& octave) { return out << octave.part; }

class ModeColour : public testing::TestWithParam<ModeOctave> {};

TEST_P(ModeColour, IsHeard) {
  const double tilt = Tilt(GetParam().mode, GetParam().centre, 1000);
  EXPECT_GE(tilt, GetParam().least) << GetParam();
  EXPECT_LE(tilt, GetParam().most) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(, ModeColour,
                         testing::Values(ModeOctave{"chest", mode1, 125, 4.5, 6},
                                         ModeOctave{"soft sibilants", mode1, 5000, -6, -4},
                                         ModeOctave{"no rumble", mode2, 125, -5.5, -3.5},
                                         ModeOctave{"presence", mode2, 2500, 2.5, 4.5},
                                         ModeOctave{"air", mode2, 5000, 0.2, 1.5},
                                         ModeOctave{"deep", mode3, 125, 2, 3.8},
                                         ModeOctave{"light", mode4, 125, -3.5, -1.8},
                                         ModeOctave{"bright", mode4, 5000, 2.4, 4},
                                         ModeOctave{"full", mode5, 125, 4.8, 6.8},
                                         ModeOctave{"hollow", mode5, 2500, 1.2, 2.8},
                                         ModeOctave{"airy hall", mode6, 5000, 1, 2.2}));

TEST(VoiceCharacter, TremblesAsOftenAsItIsSaidTo) {
  EXPECT_NEAR(Tremolo(VeoThriller, 6), 0.42, 0.06);
  EXPECT_NEAR(Tremolo(VeoPowerCurrent, 12.5), 0.92, 0.1);
  EXPECT_NEAR(Tremolo(VeoTrappedBeast, 24), 0.37, 0.06);
  EXPECT_NEAR(Tremolo(VeoHeavyMechinery, 38), 0.31, 0.06);
  // A girl's voice is steady.
  for (const double hertz : {4.0, 6.0, 8.0}) EXPECT_LT(Tremolo(VeoLorie, hertz), 0.05);
}

// It is on or off; there is little between.
TEST(VoiceCharacter, ChopsAsASwitchDoes) {
  const auto between = [](VoiceEffectOption effect) {
    Doubles levels = Envelope(effect);
    std::sort(levels.begin(), levels.end());
    const double low = levels[levels.size() / 20], high = levels[levels.size() * 19 / 20];
    const auto count = std::count_if(levels.begin(), levels.end(), [&](double level) {
      return level > low + 0.3 * (high - low) && level < high - 0.3 * (high - low);
    });
    return static_cast<double>(count) / static_cast<double>(levels.size());
  };
  EXPECT_LT(between(VeoPowerCurrent), 0.2);
  EXPECT_GT(between(VeoThriller), 0.24);
}

TEST(VoiceCharacter, EchoesAndRingsOut) {
  EXPECT_NEAR(After(VeoThriller, 200), -9, 2);
  EXPECT_NEAR(After(VeoThriller, 390), -18, 2);
  EXPECT_LT(After(VeoThriller, 150), -60);
  // Rooms: a large one, a cave, a hall.
  EXPECT_NEAR(After(VeoEthereal, 500), -19, 4);
  EXPECT_NEAR(After(VeoEthereal, 1000) - After(VeoEthereal, 500), -60 / 2.5 / 2, 4);
  EXPECT_NEAR(After(VeoTrappedBeast, 500), -26, 4);
  EXPECT_NEAR(After(mode6, 500), -22, 4);
  // All others are over with the voice.
  for (const auto effect : {VeoLuBan, VeoLorie, VeoUncle, VeoDieFat, VeoBadBoy, VeoWarCraft,
                            VeoHeavyMetal, VeoCold, VeoPowerCurrent}) {
    EXPECT_LT(After(effect, 200), -60) << effect;
  }
}

TEST(VoiceCharacter, RingsAsAPipeOfMetal) {
  EXPECT_GT(Likeness(VeoHeavyMechinery, 7), 0.5);
  EXPECT_LT(std::fabs(Likeness(VeoWarCraft, 7)), 0.1);
}

TEST(VoiceCharacter, AddsTwoVoicesRightAfterTheFirst) {
  EXPECT_NEAR(Likeness(mode5, 23), 0.35, 0.05);
  EXPECT_NEAR(Likeness(mode5, 41), 0.35, 0.05);
  EXPECT_NEAR(Likeness(mode5, 18), 0.28, 0.05);
  EXPECT_LT(std::fabs(Likeness(mode1, 23)), 0.1);
}

TEST(VoiceCharacter, IsRoughWhereItIsSaidToBe) {
  EXPECT_GT(Roughness(VeoHeavyMetal, 0), 0.35);
  EXPECT_GT(Roughness(VeoWarCraft, -7), 0.2);
  EXPECT_GT(Roughness(VeoTrappedBeast, -6), 0.15);
  EXPECT_LT(Roughness(VeoWarCraft, -7), 0.32);
  EXPECT_LT(Roughness(VeoTrappedBeast, -6), 0.26);
  EXPECT_LT(Roughness(VeoUncle, -3), 0.06);
}

}  // namespace
