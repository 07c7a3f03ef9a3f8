#include "engine_api/effects/voice_changer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/tiny_numbers.h"
#include "support/tone.h"
#include "support/voice.h"

using testing::Each;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;
using Toolbox = std::unique_ptr<IVoiceChangerToolbox>;

// What the header says of each, in order.
constexpr double kSemitones[] = {0, 0, -2, 4, 9, -3, -5, 6, -7, 0, -1, -4, -6, 0};

Toolbox Create(int effect, int rate, int channels) {
  Toolbox toolbox(IVoiceChangerToolbox::Create(rate, channels));
  toolbox->SetVoiceEffectOption(static_cast<VoiceEffectOption>(effect));
  return toolbox;
}

// Passes all of `samples` through in blocks of so many samples.
Shorts Change(IVoiceChangerToolbox& toolbox, Shorts samples, size_t block) {
  for (size_t done = 0; done < samples.size(); done += block) {
    const auto length = static_cast<short>(std::min(block, samples.size() - done));
    short count = length;
    EXPECT_EQ(toolbox.Process(&samples[done], &count), length);
    EXPECT_EQ(count, length);
  }
  return samples;
}

Shorts Change(int effect, const Shorts& samples, int rate, int channels = 1) {
  return Change(*Create(effect, rate, channels), samples,
                static_cast<size_t>(rate / 100 * channels));
}

class VoiceEffect : public testing::TestWithParam<int> {};

TEST_P(VoiceEffect, MovesThePitchAsDocumented) {
  for (const int rate : {8000, 16000, 44100}) {
    const Shorts note = SungNote(220, rate, 3);
    const Shorts out = Change(GetParam(), note, rate);
    const double pitch = 220 * std::pow(2, kSemitones[GetParam()] / 12);
    EXPECT_NEAR(CentsOff(out, pitch, rate), 0, 10) << rate;
    EXPECT_NEAR(CentsOff(out, 2 * pitch, rate), 0, 10) << rate;
  }
}

TEST_P(VoiceEffect, KeepsTheLevelOfANoteAndOfSpeech) {
  for (const int rate : {8000, 48000}) {
    for (const Shorts& in : {SungNote(220, rate, 2), SungNote(140, rate, 2), Babble(rate, 2)}) {
      EXPECT_NEAR(Decibels(Level(Change(GetParam(), in, rate)) / Level(in)), 0, 6) << rate;
    }
  }
}

TEST_P(VoiceEffect, KeepsTheLevelOfADarkVoice) {
  const Shorts in = DarkVoice(16000, 4);
  EXPECT_NEAR(Decibels(Level(Change(GetParam(), in, 16000)) / Level(in)), 0, 6);
}

TEST_P(VoiceEffect, LagsByLittleAndNeverRunsDry) {
  for (const int rate : {8000, 11025, 22050, 32000, 48000}) {
    const Shorts out = Change(GetParam(), SungNote(220, rate, 1, 2), rate, 2);
    const auto sounds = [](short sample) { return std::abs(sample) > 30; };
    const auto first = std::find_if(out.begin(), out.end(), sounds);
    EXPECT_LE(static_cast<double>(first - out.begin()) / 2 / rate, 0.135) << rate;
    // Silence for a quarter of a period would be a block that was not there in time.
    int quiet = 0;
    int longest = 0;
    for (auto it = first; it != out.end(); ++it) {
      quiet = *it == 0 ? quiet + 1 : 0;
      longest = std::max(longest, quiet);
    }
    EXPECT_LT(static_cast<double>(longest) / 2 / rate, 0.0015) << rate;
  }
}

TEST_P(VoiceEffect, IsTheSameHoweverTheInputIsCut) {
  const Shorts in = Babble(16000, 2);
  const Shorts whole = Change(*Create(GetParam(), 16000, 1), in, 160);
  EXPECT_EQ(Change(*Create(GetParam(), 16000, 1), in, 1), whole);
  EXPECT_EQ(Change(*Create(GetParam(), 16000, 1), in, 7001), whole);
}

TEST_P(VoiceEffect, DoesNotWrapAtFullScaleAndKeepsSilence) {
  const Shorts loud = Change(GetParam(), Tone(300, 32767, 44100, 88200), 44100);
  EXPECT_LT(LargestStep(loud), 30000);
  EXPECT_THAT(Change(GetParam(), Shorts(32000), 16000, 2), Each(0));
}

TEST_P(VoiceEffect, MakesWhatGetsTooLoudSofterInsteadOfClippingIt) {
  for (const Shorts& in : {SungNote(220, 44100, 2, 2), Babble(44100, 2)}) {
    EXPECT_LT(LongestClip(Change(GetParam(), AtFullScale(in), 44100, 2), 2), 3);
  }
}

// By then a tail has fallen below what a float can tell from zero.
TEST_P(VoiceEffect, MeetsNoTinyNumbersInTheSilenceAfterASound) {
  TinyNumbers tinyNumbers;
  const Toolbox toolbox = Create(GetParam(), 16000, 1);
  Change(*toolbox, SungNote(220, 16000, 1), 160);
  tinyNumbers.Forget();
  Change(*toolbox, Shorts(32 * 16000), 160);
  EXPECT_FALSE(tinyNumbers.WereMet());
}

TEST_P(VoiceEffect, AsksForNoMemoryOnceItRuns) {
  const Toolbox toolbox = Create(GetParam(), 16000, 1);
  Shorts in = SungNote(220, 16000, 4);
  const auto run = [&](size_t begin, size_t end) {
    for (size_t done = begin; done < end; done += 160) {
      short count = 160;
      toolbox->Process(&in[done], &count);
    }
  };
  run(0, 32000);
  const size_t before = AllocationCount();
  run(32000, 64000);
  EXPECT_EQ(AllocationCount(), before);
}

TEST_P(VoiceEffect, SurvivesEveryFormat) {
  CapturedStderr log;
  for (const auto& [rate, channels] :
       {std::pair{0, 1}, {-1, 2}, {44100, 0}, {44100, -2}, {44100, 20}, {7999, 1}, {400000, 2}}) {
    const Shorts in = SungNote(220, 8000, 0.1);
    const size_t lines = log.Lines().size();
    EXPECT_EQ(Change(*Create(GetParam(), rate, channels), in, 160), in);
    EXPECT_EQ(log.Lines().size(), lines + 1) << rate << ", " << channels;
  }
  for (const int rate : {96000, 192000}) {
    EXPECT_GT(Level(Change(GetParam(), SungNote(220, rate, 0.4, 2), rate, 2)), 100);
  }
}

INSTANTIATE_TEST_SUITE_P(, VoiceEffect, testing::Range(0, 14));

TEST(VoiceChanger, ChangesNoBitWithoutAnEffect) {
  const Shorts in = Babble(44100, 1);
  EXPECT_EQ(Change(VeoNone, in, 44100), in);
  const Toolbox fresh(IVoiceChangerToolbox::Create(44100, 1));
  EXPECT_EQ(Change(*fresh, in, 441), in);
}

TEST(VoiceChanger, SwitchesEffectsWithoutAClick) {
  const Shorts in = Tone(220, 12000, 44100, 10 * 44100);
  const VoiceEffectOption order[] = {VeoNone,   VeoLorie,  VeoUncle, VeoNone,
                                     VeoBadBoy, VeoDieFat, VeoNone};
  int steady = 0;
  for (const VoiceEffectOption effect : order) {
    const Shorts out = Change(effect, in, 44100);
    steady = std::max(steady, LargestStep(Shorts(out.begin() + 44100, out.end())));
  }
  const Toolbox toolbox(IVoiceChangerToolbox::Create(44100, 1));
  Shorts out;
  for (size_t i = 0; i < std::size(order); ++i) {
    toolbox->SetVoiceEffectOption(order[i]);
    const auto begin = in.begin() + static_cast<std::ptrdiff_t>(i * 44100);
    const Shorts part = Change(*toolbox, Shorts(begin, begin + 44100), 441);
    out.insert(out.end(), part.begin(), part.end());
  }
  EXPECT_LE(LargestStep(out), 1.1 * steady);
  // The last second is VeoNone again, and bit-exact once the fade is over.
  EXPECT_TRUE(std::equal(out.end() - 30000, out.end(), in.begin() + 7 * 44100 - 30000));
}

// Zero crossings a second stand for the brightness of what is heard.
double Brightness(const Shorts& samples) {
  double step = 0;
  const size_t first = samples.size() / 4;
  for (size_t i = first; i < samples.size(); ++i) {
    step += std::pow(samples[i] - samples[i - 1], 2);
  }
  const auto count = static_cast<double>(samples.size() - first);
  return std::log2(std::sqrt(step / count) / Level(samples));
}

// Of the level of a steady note, 10 ms by 10 ms, in dB.
double Swing(const Shorts& samples, int rate) {
  const auto block = static_cast<size_t>(rate / 50);
  double sum = 0;
  double squares = 0;
  int count = 0;
  for (size_t done = samples.size() / 2; done + block <= samples.size() * 3 / 4; done += block) {
    double power = 1;
    for (size_t i = done; i < done + block; ++i) power += double{1} * samples[i] * samples[i];
    const double level = 10 * std::log10(power);
    sum += level;
    squares += level * level;
    ++count;
  }
  return std::sqrt(std::max(squares / count - sum * sum / count / count, 0.0));
}

// Joins that do not fit make a held note tremble; those of the shifter must not be heard.
TEST(VoiceChanger, HoldsANoteSteadyWhereThePitchMoves) {
  for (const double pitch : {110.0, 157.0, 220.0, 311.0}) {
    const Shorts note = SungNote(pitch, 16000, 4);
    for (const int effect : {VeoLuBan, VeoLorie, VeoUncle, VeoDieFat, VeoBadBoy, VeoCold}) {
      EXPECT_LT(Swing(Change(effect, note, 16000), 16000), 0.35) << pitch << " Hz, " << effect;
    }
  }
}

// What folds back at half the rate lies beside the harmonics.
TEST(VoiceChanger, OverdrivesWithoutAliases) {
  for (const double frequency : {1700.0, 3100.0}) {
    const Shorts out = Change(VeoHeavyMetal, Tone(frequency, 8000, 16000, 32000), 16000);
    const std::vector<double> sound = ToDoubles({&out[16000], 16000});
    const double tone = AmplitudeAt(sound, frequency, 16000);
    for (int k = 3; k < 30; k += 2) {
      const double folded = std::fabs(k * frequency - 16000 * std::round(k * frequency / 16000));
      if (k * frequency < 8000 || std::fabs(folded - frequency) < 1) continue;
      EXPECT_LT(Decibels(AmplitudeAt(sound, folded, 16000) / tone), -50) << k << " x " << frequency;
    }
  }
}

// The roughness follows the level down: 200 ms after a loud sound a quiet one is as rough.
TEST(VoiceChanger, OverdrivesAQuietVoiceAsMuchAsALoudOne) {
  Shorts in = Tone(200, 20000, 16000, 16000);
  const Shorts quiet = Tone(200, 500, 16000, 16000);
  in.insert(in.end(), quiet.begin(), quiet.end());
  const Shorts out = Change(VeoHeavyMetal, in, 16000);
  const auto roughness = [&](size_t begin) {
    return Thd(ToDoubles({&out[begin], 1600}), 200, 16000);
  };
  EXPECT_GT(roughness(8000), 0.3);
  EXPECT_NEAR(roughness(16000 + 4800), roughness(8000), 0.1);
  EXPECT_NEAR(roughness(16000 + 12000), roughness(8000), 0.1);
}

TEST(VoiceChanger, MakesEachEffectADifferentVoice) {
  constexpr int kRate = 16000;
  Shorts note = SungNote(220, kRate, 3);
  std::vector<std::vector<double>> heard;
  for (int effect = 0; effect < 14; ++effect) {
    Shorts in = note;
    in.resize(in.size() + kRate / 2);
    const Shorts out = Change(effect, in, kRate);
    const Shorts body(out.begin(), out.begin() + 3 * kRate);
    const Shorts tail(out.end() - kRate / 4, out.end());
    // In units of what is easily told apart: semitones by 2, an octave of brightness by 4, 1.5 dB
    // of tremolo, 10 dB of echo.
    heard.push_back({kSemitones[effect] / 2, Brightness(body) * 4, Swing(body, kRate) / 1.5,
                     std::max(Decibels((Level(tail) + 1) / Level(body)), -60.0) / 10});
  }
  for (size_t a = 0; a < heard.size(); ++a) {
    for (size_t b = a + 1; b < heard.size(); ++b) {
      double distance = 0;
      for (size_t i = 0; i < heard[a].size(); ++i) {
        distance += std::pow(heard[a][i] - heard[b][i], 2);
      }
      EXPECT_GE(std::sqrt(distance), 1) << a << " and " << b;
    }
  }
}

}  // namespace
