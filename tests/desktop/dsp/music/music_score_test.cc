#include "desktop/dsp/music/music_score.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

// What each sign says of a sound by itself, where it says nothing, and how much it may say at most,
// so that no sign alone outvotes the others.

namespace {

using Features = desktop::MusicFeatures;

// A sound of which no sign says anything.
struct Sound {
  const char* what;
  double score;
  double deviation = 6.5;
  double sustained = 0.3;
  double tonal = 14;
  double flux = 2.9;
  double colour = 14;
  double beat = 0.25;
};

std::ostream& operator<<(std::ostream& out, const Sound& sound) { return out << sound.what; }

class MusicScore : public testing::TestWithParam<Sound> {};

TEST_P(MusicScore, IsTheSumOfTheSigns) {
  const Sound& sound = GetParam();
  Features::Values values{};
  values[Features::kLevelDeviation] = sound.deviation;
  values[Features::kSustained] = sound.sustained;
  values[Features::kTonal] = sound.tonal;
  values[Features::kFlux] = sound.flux;
  values[Features::kColourDeviation] = sound.colour;
  values[Features::kBeat] = sound.beat;
  EXPECT_NEAR(desktop::MusicScore(values), sound.score, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(
    OfOneSign, MusicScore,
    testing::Values(Sound{.what = "nothing", .score = 0},
                    Sound{.what = "a level that holds", .score = 1, .deviation = 4.5},
                    Sound{.what = "a level that holds well", .score = 1.5, .deviation = 3.5},
                    Sound{.what = "a level that hardly moves", .score = 1.5, .deviation = 3},
                    Sound{.what = "a level with syllables", .score = -0.5, .deviation = 7.5},
                    Sound{.what = "a level with pauses", .score = -1.5, .deviation = 12},
                    Sound{.what = "few tones", .score = -0.5, .tonal = 12},
                    Sound{.what = "hardly a tone", .score = -0.7, .tonal = 9},
                    Sound{.what = "a tone", .score = 1, .tonal = 18},
                    Sound{.what = "many tones", .score = 2.5, .tonal = 24},
                    Sound{.what = "nothing but tones", .score = 2.5, .tonal = 40},
                    Sound{.what = "peaks that move", .score = -0.1, .sustained = 0.29},
                    Sound{.what = "peaks that run", .score = -0.2, .sustained = 0.1},
                    Sound{.what = "peaks that stay", .score = 1, .sustained = 0.4},
                    Sound{.what = "peaks of stone", .score = 2, .sustained = 0.9},
                    Sound{.what = "little beat", .score = -0.4, .beat = 0.23},
                    Sound{.what = "no beat", .score = -0.65, .beat = 0},
                    Sound{.what = "a beat", .score = 2, .beat = 0.35},
                    Sound{.what = "a hammer", .score = 3, .beat = 1},
                    Sound{.what = "a spectrum that moves less", .score = 0.05, .flux = 2.86},
                    Sound{.what = "a spectrum that rests", .score = 0.3, .flux = 1},
                    Sound{.what = "a spectrum that moves", .score = -0.5, .flux = 3.3},
                    Sound{.what = "a spectrum that jumps", .score = -1, .flux = 6},
                    Sound{.what = "some cymbals", .score = 1, .colour = 17},
                    Sound{.what = "drums and cymbals", .score = 2, .colour = 25}));

INSTANTIATE_TEST_SUITE_P(
    OfTwoSigns, MusicScore,
    testing::Values(
        // The level says -1.5 and the spectrum 0.3 in all of these.
        Sound{.what = "an instrument", .score = -1.2 + 1, .deviation = 11, .flux = 2.6},
        Sound{.what = "an instrument alone", .score = -1.2 + 3, .deviation = 11, .flux = 2.2},
        Sound{.what = "an instrument at rest", .score = -1.2 + 3, .deviation = 15, .flux = 1},
        Sound{.what = "an instrument now and then",
              .score = -1.2 + 0.5,
              .deviation = 10,
              .flux = 2.6},
        Sound{.what = "an instrument that goes on", .score = -0.95, .deviation = 9, .flux = 2.6},
        Sound{.what = "one colour", .score = 1, .colour = 2},
        Sound{.what = "the same colour", .score = 2, .colour = 0.5},
        Sound{.what = "one colour of few tones", .score = -0.7 + 0.5, .tonal = 7, .colour = 2},
        Sound{.what = "one colour without tones", .score = -0.7, .tonal = 5, .colour = 0.5}));

INSTANTIATE_TEST_SUITE_P(
    OfNoise, MusicScore,
    testing::Values(
        // The level says 1.5 and the beat -0.65.
        Sound{.what = "even", .score = 0.85 - 3, .deviation = 2.2, .beat = 0.15},
        Sound{.what = "quite even", .score = 0.85 - 1.5, .deviation = 2.45, .beat = 0.15},
        Sound{.what = "no more even", .score = 0.85, .deviation = 2.7, .beat = 0.15},
        Sound{.what = "even with a little beat", .score = 0.85 - 1.5, .deviation = 2, .beat = 0.2},
        Sound{.what = "even with a tone",
              .score = 0.85 + 0.25,
              .deviation = 2,
              .tonal = 15,
              .beat = 0.15},
        // Few tones say -0.7.
        Sound{.what = "uneven", .score = -1.35 - 3, .tonal = 3, .beat = 0.15},
        Sound{.what = "uneven, with a rest of tones",
              .score = -1.35 - 1.5,
              .tonal = 3.5,
              .beat = 0.15},
        Sound{.what = "with a few tones", .score = -1.35, .tonal = 4, .beat = 0.15},
        Sound{.what = "even and without tones",
              .score = 1.5 - 1.35 - 3,
              .deviation = 2,
              .tonal = 3,
              .beat = 0.15},
        Sound{.what = "with a beat", .score = 1.5 - 0.7, .deviation = 2, .tonal = 3}));

}  // namespace
