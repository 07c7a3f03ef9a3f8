#include "engine_api/effects/sound_process.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/voice.h"

using testing::Each;

namespace {

using Shorts = std::vector<short>;

constexpr unsigned kRoom = 8192;

enum class Way { kShorter, kLonger };

int Process(Way way, int rate, int channels, const short* in, size_t samples, short* out,
            unsigned* outSamples, bool always = true) {
  const auto fs = static_cast<unsigned>(rate);
  const auto ch = static_cast<unsigned>(channels);
  const auto count = static_cast<unsigned>(samples);
  return way == Way::kShorter ? AccelerateSoundProcess(fs, ch, in, count, out, outSamples, always)
                              : StretchSoundProcess(fs, ch, in, count, out, outSamples);
}

// All whole blocks of 30 ms, joined.
Shorts ProcessAll(Way way, const Shorts& in, int rate, int channels = 1, bool always = true) {
  const auto block = static_cast<size_t>(3 * (rate * channels / 100));
  Shorts out;
  short outBlock[kRoom];
  for (size_t done = 0; done + block <= in.size(); done += block) {
    unsigned length = kRoom;
    EXPECT_EQ(Process(way, rate, channels, &in[done], block, outBlock, &length, always), 0);
    out.insert(out.end(), outBlock, outBlock + length);
  }
  return out;
}

double LengthRatio(const Shorts& out, const Shorts& in) {
  return static_cast<double>(out.size()) / static_cast<double>(in.size());
}

class SoundProcess : public testing::TestWithParam<Way> {
 protected:
  // Of one block, and of a recording.
  double Shortest() const { return GetParam() == Way::kShorter ? 0.70 : 1.08; }
  double Longest() const { return GetParam() == Way::kShorter ? 0.92 : 1.30; }
};

TEST_P(SoundProcess, KeepsTheDocumentedRangeInEveryBlock) {
  for (const int rate : {8000, 16000, 22050, 44100, 48000}) {
    const auto block = static_cast<size_t>(3 * (rate / 100));
    for (const Shorts& in : {SungNote(120, rate, 1), SungNote(210, rate, 1), SungNote(390, rate, 1),
                             Shorts(static_cast<size_t>(rate))}) {
      short out[kRoom];
      for (size_t done = 0; done + block <= in.size(); done += block) {
        unsigned length = kRoom;
        ASSERT_EQ(Process(GetParam(), rate, 1, &in[done], block, out, &length), 0);
        const double ratio = static_cast<double>(length) / static_cast<double>(block);
        ASSERT_GE(ratio, Shortest()) << rate;
        ASSERT_LE(ratio, Longest()) << rate;
      }
    }
  }
}

TEST_P(SoundProcess, KeepsThePitchOfTheFirstThreeHarmonics) {
  for (const int rate : {8000, 16000, 44100}) {
    for (const double pitch : {95.0, 123.0, 177.0, 220.0, 311.0, 440.0}) {
      const Shorts out = ProcessAll(GetParam(), SungNote(pitch, rate, 3), rate);
      for (const int harmonic : {1, 2, 3}) {
        EXPECT_NEAR(CentsOff(out, harmonic * pitch, rate), 0, 10) << pitch << " Hz at " << rate;
      }
    }
  }
}

TEST_P(SoundProcess, KeepsTheRangeOverASentenceOfALowVoice) {
  for (const Shorts& in : {SungNote(93, 16000, 4), Babble(16000, 6)}) {
    const double ratio = LengthRatio(ProcessAll(GetParam(), in, 16000), in);
    EXPECT_GE(ratio, Shortest());
    EXPECT_LE(ratio, Longest());
  }
}

TEST_P(SoundProcess, MakesNoStepAtASeam) {
  for (const int rate : {8000, 44100}) {
    for (const double pitch : {95.0, 150.0, 333.0}) {
      const Shorts in = SungNote(pitch, rate, 2);
      EXPECT_LE(LargestStep(ProcessAll(GetParam(), in, rate)), 1.02 * LargestStep(in)) << pitch;
    }
  }
}

TEST_P(SoundProcess, KeepsTheEndsOfABlock) {
  const Shorts in = Babble(16000, 1);
  for (size_t done = 0; done + 480 <= in.size(); done += 480) {
    short out[kRoom];
    unsigned length = kRoom;
    ASSERT_EQ(Process(GetParam(), 16000, 1, &in[done], 480, out, &length), 0);
    EXPECT_EQ(out[0], in[done]);
    EXPECT_EQ(out[length - 1], in[done + 479]);
  }
}

TEST_P(SoundProcess, CutsAllChannelsAtTheSamePlace) {
  const Shorts mono = Babble(16000, 3);
  Shorts stereo;
  for (const short sample : mono) {
    stereo.push_back(sample);
    stereo.push_back(static_cast<short>(sample / 2));
  }
  const Shorts out = ProcessAll(GetParam(), stereo, 16000, 2);
  for (size_t i = 0; i + 1 < out.size(); i += 2) ASSERT_NEAR(out[i + 1], out[i] / 2.0, 1.01);
}

TEST_P(SoundProcess, HearsChannelsThatCancelEachOther) {
  for (const Shorts& mono : {Babble(16000, 3), SungNote(93, 16000, 2)}) {
    const Shorts expected = ProcessAll(GetParam(), mono, 16000);
    const Shorts stereo = Interleaved(mono, Opposed(mono));
    const Shorts out = ProcessAll(GetParam(), stereo, 16000, 2);
    EXPECT_EQ(Channel(out, 2, 0), expected);
    EXPECT_EQ(Channel(out, 2, 1), Opposed(expected));
  }
}

// 3 * (22050 * 2 / 100) is an odd number of samples: the rest keeps the channels in order.
TEST_P(SoundProcess, PassesARestThatIsNoWholeFrame) {
  const Shorts left = SungNote(200, 22050, 2);
  Shorts stereo;
  for (const short sample : left) stereo.insert(stereo.end(), {sample, 0});
  const Shorts out = ProcessAll(GetParam(), stereo, 22050, 2);
  for (size_t i = 1; i < out.size(); i += 2) ASSERT_EQ(out[i], 0) << i;
}

TEST_P(SoundProcess, StaysWithinFullScaleAndKeepsSilence) {
  Shorts square(480 * 20);
  for (size_t i = 0; i < square.size(); ++i) square[i] = i / 40 % 2 == 0 ? 32767 : -32768;
  const Shorts out = ProcessAll(GetParam(), square, 16000);
  EXPECT_LE(LargestStep(out), 65535);
  EXPECT_THAT(ProcessAll(GetParam(), Shorts(16000), 16000), Each(0));
}

TEST_P(SoundProcess, Takes29To31Milliseconds) {
  const Shorts in = Babble(16000, 1);
  for (const size_t samples : {464U, 480U, 496U}) {
    short out[kRoom];
    unsigned length = kRoom;
    EXPECT_EQ(Process(GetParam(), 16000, 1, in.data(), samples, out, &length), 0) << samples;
  }
}

TEST_P(SoundProcess, IsStateless) {
  const Shorts in = Babble(16000, 2);
  EXPECT_EQ(ProcessAll(GetParam(), in, 16000), ProcessAll(GetParam(), in, 16000));
}

TEST_P(SoundProcess, RefusesWithACodeAndNoSamples) {
  CapturedStderr log;
  const Shorts in(4800);
  const auto refused = [&](int rate, int channels, size_t samples, unsigned room) {
    Shorts out(kRoom, 77);
    unsigned length = room;
    const int code = Process(GetParam(), rate, channels, in.data(), samples, out.data(), &length);
    EXPECT_EQ(length, 0U);
    EXPECT_THAT(out, Each(77));
    return code;
  };
  EXPECT_EQ(refused(7999, 1, 240, kRoom), kSoundProcessBadFormat);
  EXPECT_EQ(refused(0, 1, 0, kRoom), kSoundProcessBadFormat);
  EXPECT_EQ(refused(192000, 1, 4800, kRoom), kSoundProcessBadFormat);
  EXPECT_EQ(refused(16000, 0, 480, kRoom), kSoundProcessBadFormat);
  EXPECT_EQ(refused(16000, 20, 4800, kRoom), kSoundProcessBadFormat);
  EXPECT_EQ(refused(16000, 1, 160, kRoom), kSoundProcessBadBlock);
  EXPECT_EQ(refused(16000, 1, 4800, kRoom), kSoundProcessBadBlock);
  EXPECT_EQ(refused(16000, 1, 320, kRoom), kSoundProcessBadBlock);
  EXPECT_EQ(refused(16000, 1, 463, kRoom), kSoundProcessBadBlock);
  EXPECT_EQ(refused(16000, 1, 497, kRoom), kSoundProcessBadBlock);
  EXPECT_EQ(refused(16000, 1, 480, 100), kSoundProcessNoRoom);
  EXPECT_LE(log.Lines().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(, SoundProcess, testing::Values(Way::kShorter, Way::kLonger),
                         [](const auto& info) {
                           return info.param == Way::kShorter ? "Accelerate" : "Stretch";
                         });

TEST(AccelerateSoundProcess, LeavesConsonantsWholeWhenAsked) {
  Shorts noise(16000);
  uint32_t state = 1;
  for (short& sample : noise) {
    state = state * 1664525 + 1013904223;
    sample = static_cast<short>(static_cast<int32_t>(state) / 131072);
  }
  noise.resize(33 * 480);
  const Shorts kept = ProcessAll(Way::kShorter, noise, 16000, 1, false);
  EXPECT_EQ(kept, noise);
  EXPECT_LT(ProcessAll(Way::kShorter, noise, 16000, 1, true).size(), noise.size());
  const Shorts vowel = SungNote(200, 16000, 1);
  EXPECT_LT(ProcessAll(Way::kShorter, vowel, 16000, 1, false).size(), 0.9 * 16000);
}

// Of what repeats itself after the longest or the shortest period that is looked for, exactly one
// period goes; where only every other block is to give one, it is that with an early pulse.
TEST(AccelerateSoundProcess, FindsTheLongestAndTheShortestPeriod) {
  for (const size_t period : {20U, 71U, 100U}) {
    const Shorts noise = ToShorts(WhiteNoise(100, 0.5, 3));
    Shorts in(240);
    for (size_t i = 0; i < in.size(); ++i) in[i] = noise[i % period];
    Shorts out(kRoom);
    unsigned length = kRoom;
    ASSERT_EQ(Process(Way::kShorter, 8000, 1, in.data(), in.size(), out.data(), &length, false), 0);
    out.resize(length);
    EXPECT_EQ(out, Shorts(in.begin(), in.end() - static_cast<std::ptrdiff_t>(period))) << period;
  }
}

}  // namespace
