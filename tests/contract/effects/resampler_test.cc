#include <gmock/gmock.h>

#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/effects/audio_resampler_ex.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::vector<short> Ramp(size_t samples) {
  std::vector<short> ramp(samples);
  std::iota(ramp.begin(), ramp.end(), short{1});
  return ramp;
}

}  // namespace

TEST(TestAudioResamplerEx, ConvertsWholeBlocksThenReleasesInOrder) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {44100, 2, Ramp(882 + 882 + 881)};

  TestAudioResamplerEx("in.wav", "out.wav", 16000, 1);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WavWriter#1(out.wav, 16000, 1)
      GetPlaceString(TestAudioResamplerEx, audio_engine/core/audio_tester, 1719)
      IAudioResamplerEx::Create(441, 44100, 2, 160, 16000, 1, the place) = IAudioResamplerEx#1
      WavReader#1.ReadSamples(882) = 882
      IAudioResamplerEx#1.Convert(@1, 882, @2, 160) = 1
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(882) = 882
      IAudioResamplerEx#1.Convert(@1, 882, @2, 160) = 1
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(882) = 881  # Dropped: neither converted nor written.
      IAudioResamplerEx::Destroy(IAudioResamplerEx#1)
      ~IAudioResamplerEx#1
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
  EXPECT_EQ(engine.wavs["out.wav"].samples[0], 1);
  EXPECT_EQ(engine.wavs["out.wav"].samples[160], 883);
}

TEST(TestAudioResamplerEx, ConvertsEqualFormatsToo) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {8000, 1, Ramp(80)};

  TestAudioResamplerEx("in.wav", "out.wav", 8000, 1);

  EXPECT_THAT(engine.CallsWith("Convert"),
              ElementsAre("IAudioResamplerEx#1.Convert(@1, 80, @2, 80) = 1"));
}

TEST(TestAudioResamplerEx, TruncatesTheBlockAndNotTheChannel) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {22050, 2, Ramp(441)};

  TestAudioResamplerEx("in.wav", "out.wav", 11025, 2);

  EXPECT_THAT(engine.CallsWith("Create"),
              ElementsAre("IAudioResamplerEx::Create(220, 22050, 2, 110, 11025, 2, the place) = "
                          "IAudioResamplerEx#1"));
  EXPECT_THAT(engine.CallsWith("Convert"),
              ElementsAre("IAudioResamplerEx#1.Convert(@1, 441, @2, 220) = 1"));
  EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(220));
}

// The other way round: 220 of each channel are asked for, 441 samples are written.
TEST(TestAudioResamplerEx, TruncatesTheBlockOfTheOutputToo) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {16000, 1, Ramp(160)};

  TestAudioResamplerEx("in.wav", "out.wav", 22050, 2);

  EXPECT_THAT(engine.CallsWith("Create"),
              ElementsAre("IAudioResamplerEx::Create(160, 16000, 1, 220, 22050, 2, the place) = "
                          "IAudioResamplerEx#1"));
  EXPECT_THAT(engine.CallsWith("Convert"),
              ElementsAre("IAudioResamplerEx#1.Convert(@1, 160, @2, 441) = 1"));
  EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(441));
}

TEST(TestAudioResamplerEx, WritesABlockThatCouldNotBeConverted) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {16000, 1, Ramp(3 * 160)};
  int block = 0;
  engine.script<AudioResamplerExScript>().convert = [&](const short*, uint32_t, short* target,
                                                        uint32_t samples) {
    if (++block == 2) return false;
    std::fill_n(target, samples, static_cast<short>(block));
    return true;
  };

  TestAudioResamplerEx("in.wav", "out.wav", 8000, 1);

  const std::vector<short>& out = engine.wavs["out.wav"].samples;
  ASSERT_THAT(out, SizeIs(3 * 80));
  EXPECT_EQ(out[0], 1);
  EXPECT_EQ(out[80], 1);  // What the array held.
  EXPECT_EQ(out[160], 3);
}

TEST(TestAudioResamplerEx, EndsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;

  TestAudioResamplerEx("in.wav", "out.wav", 16000, 1);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WavWriter#1(out.wav, 16000, 1)
      GetPlaceString(TestAudioResamplerEx, audio_engine/core/audio_tester, 1719)
      IAudioResamplerEx::Create(0, 0, 0, 160, 16000, 1, the place) = IAudioResamplerEx#1
      IAudioResamplerEx::Destroy(IAudioResamplerEx#1)
      ~IAudioResamplerEx#1
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.wavs["out.wav"].samples, IsEmpty());
}

TEST(TestAudioResamplerEx, KeepsTheBlockLengthIn16Bits) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {6553700, 1, Ramp(100)};  // 65537 samples a block, 1 in 16 bits.

  TestAudioResamplerEx("in.wav", "out.wav", 8000, 1);

  EXPECT_THAT(engine.CallsWith("ReadSamples(1) = 1"), SizeIs(100));
}

TEST(TestAudioResamplerEx, ReadsNoBlockThatItsArrayDoesNotHold) {
  for (const auto& [samples, blocks] : {std::pair(8192, 2), {8193, 0}}) {
    FakeEngine engine;
    engine.wavs["in.wav"] = {100 * samples, 1, Ramp(20000)};
    engine.wavs["niannujiao_44100_2.wav"] = engine.wavs["in.wav"];

    TestAudioResamplerEx("in.wav", "out.wav", 8000, 1);
    TestSpeexConverter();

    EXPECT_THAT(engine.CallsWith("#1.Convert"), SizeIs(blocks)) << samples;
    EXPECT_THAT(engine.CallsWith("#2.Convert"), SizeIs(blocks)) << samples;
    EXPECT_THAT(engine.CallsWith("ReadSamples"), SizeIs(blocks == 0 ? 0 : 2 * (blocks + 1)));
  }
}

TEST(TestAudioResamplerEx, WritesNoMoreThanItsArrayHolds) {
  for (const auto& [rate, channels, samples] :
       {std::tuple(8193 * 100, 1, 8192U), {2147483647, 64, 8192U}, {-8000, 1, 0U}}) {
    FakeEngine engine;
    engine.wavs["in.wav"] = {8000, 1, Ramp(80)};

    TestAudioResamplerEx("in.wav", "out.wav", rate, channels);

    EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(samples)) << rate;
  }
}

TEST(TestSpeexConverter, OffersItsWholeArrayAndLeavesTheConverterAlive) {
  FakeEngine engine;
  engine.wavs["niannujiao_44100_2.wav"] = {44100, 2, Ramp(882 + 881)};

  TestSpeexConverter();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(niannujiao_44100_2.wav)
      WavWriter#1(resampler.wav, 24000, 1)
      IAudioResamplerEx::Create(441, 44100, 2, 240, 24000, 1, null) = IAudioResamplerEx#1
      WavReader#1.ReadSamples(882) = 882
      IAudioResamplerEx#1.Convert(@1, 882, @2, 8192) = 1
      WavWriter#1.WriteSamples(240)
      WavReader#1.ReadSamples(882) = 881
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.live, ElementsAre(std::pair("IAudioResamplerEx", 1)));
}

TEST(TestSpeexConverter, SaysSoAndSkipsABlockThatCouldNotBeConverted) {
  FakeEngine engine;
  engine.wavs["niannujiao_44100_2.wav"] = {44100, 2, Ramp(3 * 882)};
  int block = 0;
  engine.script<AudioResamplerExScript>().convert = [&](const short*, uint32_t, short* target,
                                                        uint32_t samples) {
    std::fill_n(target, samples, static_cast<short>(++block));
    return block != 2;
  };

  TestSpeexConverter();

  EXPECT_THAT(engine.CallsWith("puts"), ElementsAre("puts(\"Error.....\")"));
  const std::vector<short>& out = engine.wavs["resampler.wav"].samples;
  ASSERT_THAT(out, SizeIs(2 * 240));
  EXPECT_EQ(out[239], 1);
  EXPECT_EQ(out[240], 3);
}

TEST(TestSpeexConverter, TruncatesTheBlockPerChannel) {
  FakeEngine engine;
  engine.wavs["niannujiao_44100_2.wav"] = {22050, 2, Ramp(441)};

  TestSpeexConverter();

  EXPECT_THAT(engine.CallsWith("Convert"),
              ElementsAre("IAudioResamplerEx#1.Convert(@1, 440, @2, 8192) = 1"));
}

TEST(TestSpeexConverter, EndsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;

  TestSpeexConverter();

  EXPECT_THAT(engine.CallsWith("Convert"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("Create"),
              ElementsAre("IAudioResamplerEx::Create(0, 0, 0, 240, 24000, 1, null) = "
                          "IAudioResamplerEx#1"));
  EXPECT_THAT(engine.wavs["resampler.wav"].samples, IsEmpty());
}
