#include "engine_api/effects/voice_beautify.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/tone.h"
#include "support/voice.h"
#include "voice/beautified.h"

using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

class BeautifyMode : public testing::TestWithParam<int> {};

// A singer stays in key in every mode.
TEST_P(BeautifyMode, MovesThePitchBySemitonesAlone) {
  for (const int rate : {8000, 44100}) {
    const Shorts note = SungNote(220, rate, 3);
    for (const auto& [strength, semitones] : {std::pair{1.0F, 0.0F}, {0.5F, 0.0F}, {1.0F, 3.0F}}) {
      const Shorts out = Process(*Enabled(GetParam(), strength, semitones), note, rate);
      const auto ratio = static_cast<double>(semitones);
      EXPECT_NEAR(CentsOff(out, 220 * std::exp2(ratio / 12), rate), 0, 10) << rate;
    }
  }
}

TEST_P(BeautifyMode, KeepsTheLevelAndIsHeard) {
  for (const int rate : {8000, 48000}) {
    for (const Shorts& in : {SungNote(220, rate, 2), Babble(rate, 2)}) {
      const Shorts out = Process(*Enabled(GetParam(), 1, 0), in, rate);
      EXPECT_NEAR(20 * std::log10(Level(out) / Level(in)), 0, 6) << rate;
      Shorts difference(in.size());
      for (size_t i = 0; i < in.size(); ++i) difference[i] = static_cast<short>(out[i] - in[i]);
      EXPECT_GT(Level(difference), 0.1 * Level(in)) << rate;
    }
  }
}

TEST_P(BeautifyMode, KeepsTheLevelOfADarkVoice) {
  const Shorts in = DarkVoice(16000, 4);
  for (const float semitones : {0.0F, -7.0F, 12.0F}) {
    const Shorts out = Process(*Enabled(GetParam(), 1, semitones), in, 16000);
    EXPECT_NEAR(20 * std::log10(Level(out) / Level(in)), 0, 6) << semitones;
  }
}

TEST_P(BeautifyMode, MakesWhatGetsTooLoudSofterInsteadOfClippingIt) {
  for (const int rate : {8000, 44100}) {
    for (const Shorts& in : {SungNote(220, rate, 2), Babble(rate, 2)}) {
      const Shorts loud = AtFullScale(in);
      EXPECT_LT(LongestClip(Process(*Enabled(GetParam(), 1, 0), loud, rate)), 3) << rate;
    }
  }
}

TEST_P(BeautifyMode, WorksInStereoAsInMono) {
  const Shorts mono = SungNote(220, 16000, 1);
  const Shorts stereo = SungNote(220, 16000, 1, 2);
  for (const Shorts& out : {Process(*Enabled(GetParam(), 1, 0), stereo, 16000, 2)}) {
    EXPECT_NEAR(20 * std::log10(Level(out) / Level(mono)), 0, 6);
  }
}

TEST_P(BeautifyMode, AtStrengthZeroChangesNoBit) {
  const Shorts in = Babble(16000, 1);
  EXPECT_EQ(Process(*Enabled(GetParam(), 0, 0), in, 16000), in);
  EXPECT_EQ(Process(*Enabled(GetParam(), -1, 0), in, 16000), in);
  const float none = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(Process(*Enabled(GetParam(), none, none), in, 16000), in);
}

TEST_P(BeautifyMode, ClampsItsParameters) {
  const Shorts in = SungNote(220, 16000, 3);
  EXPECT_EQ(Process(*Enabled(GetParam(), 50, 0), in, 16000),
            Process(*Enabled(GetParam(), 1, 0), in, 16000));
  const Shorts high = Process(*Enabled(GetParam(), 0, 99), in, 16000);
  EXPECT_NEAR(CentsOff(high, 440, 16000), 0, 10);
  const Shorts low = Process(*Enabled(GetParam(), 0, -99), in, 16000);
  EXPECT_NEAR(CentsOff(low, 220 * std::pow(2, -7.0 / 12), 16000), 0, 10);
}

INSTANTIATE_TEST_SUITE_P(, BeautifyMode, testing::Range(0, 6));

// The level of a harmonic in dB, over stretches so short that a cent more or less does not count.
double HarmonicLevel(const std::vector<double>& sound, double frequency) {
  double power = 0;
  for (size_t begin = 8000; begin < 24000; begin += 1600) {
    power += std::pow(AmplitudeAt({&sound[begin], 1600}, frequency, 16000), 2);
  }
  return Decibels(std::sqrt(power / 10));
}

// How many dB the harmonics of a sung "a" at `pitch` Hz lie beside the formants of the note at
// `before` Hz, moved by `ratio`: root mean square below 3500 Hz, whatever the level.
double FormantError(const Shorts& in, double before, const Shorts& out, double pitch,
                    double ratio) {
  const std::vector<double> source = ToDoubles(in);
  const std::vector<double> moved = ToDoubles(out);
  const auto formants = [&](double frequency) {
    const double harmonic = std::max(std::floor(frequency / before), 1.0);
    const double share = std::clamp(frequency / before - harmonic, 0.0, 1.0);
    const double low = HarmonicLevel(source, harmonic * before);
    return low + share * (HarmonicLevel(source, (harmonic + 1) * before) - low);
  };
  double sum = 0, squares = 0;
  int count = 0;
  for (int k = 1; k * pitch < 3500; ++k, ++count) {
    const double error = HarmonicLevel(moved, k * pitch) - formants(k * pitch / ratio);
    sum += error;
    squares += error * error;
  }
  return std::sqrt(squares / count - sum * sum / count / count);
}

// Moved along, the formants are off by 9 to 14 dB.
TEST(VoiceBeautify, KeepsTheFormantsWhereThePitchMoves) {
  for (const double before : {110.0, 220.0}) {
    const Shorts in = SungNote(before, 16000, 2);
    for (const float semitones : {-7.0F, -3.0F, 4.0F, 9.0F, 12.0F}) {
      const Beautify effect = Enabled(mode1, 1e-9F, semitones);
      const double pitch = before * std::exp2(static_cast<double>(semitones) / 12);
      const double error = FormantError(in, before, Process(*effect, in, 16000), pitch, 1);
      EXPECT_LT(error, before < 200 ? 4.5 : 2.5) << before << " Hz by " << semitones;
    }
  }
}

TEST(VoiceBeautify, MovesTheFormantsOfTheDeepAndTheSweetMode) {
  const Shorts in = SungNote(110, 16000, 2);
  // Their filters tilt it a little.
  const Shorts deep = Process(*Enabled(mode3, 1, 0), in, 16000);
  EXPECT_LT(FormantError(in, 110, deep, 110, std::exp2(-2.0 / 12)), 4);
  EXPECT_GT(FormantError(in, 110, deep, 110, 1), 4);
  const Shorts sweet = Process(*Enabled(mode4, 1, 0), in, 16000);
  EXPECT_LT(FormantError(in, 110, sweet, 110, std::exp2(2.0 / 12)), 4);
  EXPECT_GT(FormantError(in, 110, sweet, 110, 1), 4);
}

TEST(VoiceBeautify, ChangesNoBitUntilItIsEnabled) {
  const Shorts in = Babble(16000, 1);
  const Beautify effect(IAudioVoiceBeautify::Create());
  effect->SetVoiceBeautifyOption(mode6, 1, 0);
  EXPECT_FALSE(effect->GetEnabled());
  EXPECT_FALSE(effect->IsActive());
  EXPECT_EQ(Process(*effect, in, 16000), in);
}

TEST(VoiceBeautify, SwitchesOffWithoutAClickAndThenChangesNoBit) {
  const Shorts in = SungNote(220, 44100, 2);
  const Beautify effect = Enabled(mode3, 1, 0);
  Shorts out = Process(*effect, in, 44100);
  EXPECT_TRUE(effect->IsActive());
  effect->SetEnabled(false);
  const Shorts after = Process(*effect, in, 44100);
  EXPECT_FALSE(effect->IsActive());
  EXPECT_TRUE(std::equal(after.end() - 44100, after.end(), in.end() - 44100));
  out.insert(out.end(), after.begin(), after.end());
  EXPECT_LE(LargestStep(out), 1.6 * LargestStep(in));
}

TEST(VoiceBeautify, DoesTheSameThroughEveryEntrance) {
  const Shorts in = Babble(16000, 1);
  const Shorts expected = Process(*Enabled(mode4, 1, 0), in, 16000);
  const Beautify bytes = Enabled(mode4, 1, 0);
  const Beautify words = Enabled(mode4, 1, 0);
  for (size_t done = 0; done + 160 <= in.size(); done += 160) {
    const auto begin = in.begin() + static_cast<std::ptrdiff_t>(done);
    Shorts block(begin, begin + 160);
    std::vector<int> wide(begin, begin + 160);
    EXPECT_EQ(bytes->Process(reinterpret_cast<char*>(block.data()), 160, 16000, 1, 16), 160);
    EXPECT_EQ(words->Process(wide.data(), 160, 16000, 1, 16, 160), 160);
    for (size_t i = 0; i < 160; ++i) {
      ASSERT_EQ(block[i], expected[done + i]);
      ASSERT_EQ(wide[i], expected[done + i]);
    }
  }
}

// After a loud tone that had to be made softer the gain comes back: all but 1 / e of the way within
// 12 ms, for which a peak counts, and 90 ms.
TEST(VoiceBeautify, ComesBackAfterALoudSound) {
  constexpr int kRate = 48000;
  Shorts tone = Tone(3000, 30000, kRate, kRate);
  for (size_t i = kRate / 2; i < tone.size(); ++i) tone[i] = static_cast<short>(tone[i] / 20);
  const auto out = ToDoubles(Process(*Enabled(mode2, 1, 0), tone, kRate));
  constexpr size_t kStretch = kRate / 500;  // 2 ms.
  const auto level = [&](size_t ms) { return Rms({&out[ms * (kRate / 1000)], kStretch}); };
  const double first = level(504), last = level(990);
  EXPECT_GT(Decibels(last / first), 1.5);
  size_t ms = 504;
  while (last - level(ms) > (last - first) / std::exp(1.0)) ++ms;
  EXPECT_NEAR(static_cast<double>(ms - 500), 12 + 90, 15);
}

TEST(VoiceBeautify, LeavesABlockAloneThatIsLongerThanItsRoom) {
  const Beautify effect = Enabled(mode2, 1, 0);
  std::vector<int> block(400);
  for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<int>(37 * i % 2000);
  const std::vector<int> before = block;
  for (const int room : {0, 160, 318, 319}) {
    EXPECT_EQ(effect->Process(block.data(), 160, 16000, 2, 16, room), 160);
    EXPECT_EQ(block, before) << room;
  }
  EXPECT_EQ(effect->Process(block.data(), 160, 16000, 0, 16, 320), 160);
  EXPECT_EQ(block, before) << "no channels";
  EXPECT_EQ(effect->Process(block.data(), 160, 16000, 2, 16, 320), 160);
  EXPECT_NE(block, before);
}

TEST(VoiceBeautify, CountsTheSamplesOfAllChannels) {
  const Beautify effect = Enabled(mode2, 1, 0);
  Shorts samples = SungNote(220, 16000, 0.1, 2);
  const Shorts before = samples;
  auto* block = reinterpret_cast<unsigned short*>(samples.data());
  EXPECT_EQ(effect->VoiceBeautifyProcess(block, 320, 16000, 2), 320);
  EXPECT_NE(Shorts(samples.begin(), samples.begin() + 320),
            Shorts(before.begin(), before.begin() + 320));
  EXPECT_EQ(Shorts(samples.begin() + 320, samples.end()),
            Shorts(before.begin() + 320, before.end()));
}

TEST(VoiceBeautify, ForgetsWhenFlushed) {
  const Shorts in = SungNote(220, 16000, 1);
  const Beautify effect = Enabled(mode6, 1, 2);
  const Shorts first = Process(*effect, in, 16000);
  effect->Flush();
  EXPECT_EQ(Process(*effect, in, 16000), first);
}

TEST(VoiceBeautify, PassesWhatItCannotDo) {
  for (const auto& [rate, channels] :
       {std::pair{0, 1}, {-1, 2}, {44100, 0}, {44100, 20}, {7999, 1}, {400000, 2}}) {
    CapturedStderr log;
    const Beautify effect = Enabled(mode6, 1, 0);
    Shorts in = SungNote(220, 8000, 0.1);
    const Shorts before = in;
    for (int call = 0; call < 3; ++call) {
      auto* samples = reinterpret_cast<unsigned short*>(in.data());
      EXPECT_EQ(effect->VoiceBeautifyProcess(samples, 400, rate, channels), 400);
    }
    EXPECT_EQ(in, before);
    EXPECT_THAT(log.Lines(), SizeIs(1)) << rate << ", " << channels;
  }
}

}  // namespace
