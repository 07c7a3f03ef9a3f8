#include <gmock/gmock.h>

#include <algorithm>

#include "bench/effects/routines.h"
#include "fake_engine/effects/voice_beautify.h"
#include "fake_engine/effects/voice_changer.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

}  // namespace

TEST(TestVoiceBeautify, BeautifiesWholeBlocksAndLeavesTheEffectAlive) {
  FakeEngine engine;
  engine.wavs["f:\\4.wav"] = {16000, 1, Shorts(160 + 160 + 159, 1)};
  engine.script<VoiceBeautifyScript>().process = [](short* samples, int count) {
    std::fill_n(samples, count, short{5});
    return count;
  };

  TestVoiceBeautify();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(f:\4.wav)
      WavWriter#1(f:\4_out6.wav, 16000, 1)
      printf("TestInFile Fs = %d, ch = %d\n", 16000, 1)
      IAudioVoiceBeautify::Create() = IAudioVoiceBeautify#1
      IAudioVoiceBeautify#1.SetEnabled(true)
      IAudioVoiceBeautify#1.SetVoiceBeautifyOption(5, 1, 0)
      WavReader#1.ReadSamples(160) = 160
      IAudioVoiceBeautify#1.VoiceBeautifyProcess(@1, 160, 16000, 1) = 160
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 160
      IAudioVoiceBeautify#1.VoiceBeautifyProcess(@1, 160, 16000, 1) = 160
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 159
      printf("notSame = %d, total = %d\n", 0, 2)  # Blocks, not samples.
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["f:\\4_out6.wav"].samples, Shorts(320, 5));
  EXPECT_THAT(engine.live, ElementsAre(std::pair("IAudioVoiceBeautify", 1)));
}

TEST(TestVoiceBeautify, ReportsEachOtherCountAndWritesTheWholeBlock) {
  FakeEngine engine;
  engine.wavs["f:\\4.wav"] = {44100, 2, Shorts(4 * 882, 1)};
  int block = 0;
  engine.script<VoiceBeautifyScript>().process = [&](short*, int) {
    const int answers[] = {441, 882, 0, -1};
    return answers[block++];
  };

  TestVoiceBeautify();

  EXPECT_THAT(engine.CallsWith("VoiceBeautifyProcess"), SizeIs(4));
  EXPECT_THAT(engine.CallsWith("is not the same"), Transcript(R"(
      printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 1, 441, 882)
      printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 3, 0, 882)
      printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 4, -1, 882)
  )"));
  EXPECT_THAT(engine.CallsWith("notSame"),
              ElementsAre("printf(\"notSame = %d, total = %d\\n\", 3, 4)"));
  EXPECT_THAT(engine.wavs["f:\\4_out6.wav"].samples, SizeIs(4 * 882));
}

TEST(TestVoiceBeautify, KeepsTheBlockLengthIn16Bits) {
  FakeEngine engine;
  engine.wavs["f:\\4.wav"] = {6553700, 1, Shorts(3)};  // 65537 samples a block, 1 in 16 bits.

  TestVoiceBeautify();

  EXPECT_THAT(engine.CallsWith("ReadSamples(1) = 1"), SizeIs(3));
}

TEST(TestVoiceBeautify, ReadsNothingIntoABlockThatIsTooLong) {
  for (const int rate : {819300, 4000000}) {  // 8193 samples, and 40000, which is negative.
    FakeEngine engine;
    engine.wavs["f:\\4.wav"] = {rate, 1, Shorts(50000)};

    TestVoiceBeautify();

    EXPECT_THAT(engine.CallsWith("ReadSamples"), IsEmpty()) << rate;
  }
}

TEST(TestVoiceBeautify, PrintsZerosWhenTheInputIsMissing) {
  FakeEngine engine;

  TestVoiceBeautify();

  EXPECT_THAT(engine.CallsWith("printf"), Transcript(R"(
      printf("TestInFile Fs = %d, ch = %d\n", 0, 0)
      printf("notSame = %d, total = %d\n", 0, 0)
  )"));
  EXPECT_THAT(engine.wavs["f:\\4_out6.wav"].samples, IsEmpty());
}

TEST(TestVoiceChangerEx, ChangesWholeBlocksAndLeavesTheToolboxAlive) {
  FakeEngine engine;
  engine.wavs["voice.wav"] = {44100, 2, Shorts(882 + 881, 1)};
  engine.script<VoiceChangerScript>().process = [](short* samples, short* count) {
    std::fill_n(samples, *count, short{5});
    return int{*count};
  };

  TestVoiceChangerEx();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(voice.wav)
      WavWriter#1(voice_changer_out.wav, 44100, 2)
      printf("TestInFile Fs = %d, ch = %d\n", 44100, 2)
      IVoiceChangerToolbox::Create(44100, 2) = IVoiceChangerToolbox#1
      IVoiceChangerToolbox#1.SetVoiceEffectOption(4)
      WavReader#1.ReadSamples(882) = 882
      IVoiceChangerToolbox#1.Process(@1, 882) = 882, 882
      WavWriter#1.WriteSamples(882)
      WavReader#1.ReadSamples(882) = 881
      printf("notSame = %d, total = %d\n", 0, 1)
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["voice_changer_out.wav"].samples, Shorts(882, 5));
  EXPECT_THAT(engine.live, ElementsAre(std::pair("IVoiceChangerToolbox", 1)));
}

// The count as the effect left it is what is compared, written and read next.
TEST(TestVoiceChangerEx, GoesOnWithTheCountThatTheEffectLeft) {
  FakeEngine engine;
  engine.wavs["voice.wav"] = {16000, 1, Shorts(1000, 1)};
  int block = 0;
  engine.script<VoiceChangerScript>().process = [&](short*, short* count) {
    ++block;
    if (block == 1) *count = 200;
    if (block == 2) *count = 100;
    return block == 1 ? 160 : 100;  // Other than the count, then the same.
  };

  TestVoiceChangerEx();

  // Of 1000 samples.
  EXPECT_THAT(engine.CallsWith("Samples("), Transcript(R"(
      WavReader#1.ReadSamples(160) = 160
      WavWriter#1.WriteSamples(200)
      WavReader#1.ReadSamples(200) = 200
      WavWriter#1.WriteSamples(100)
  )" + Times((1000 - 160 - 200) / 100, R"(
      WavReader#1.ReadSamples(100) = 100
      WavWriter#1.WriteSamples(100)
  )") + R"(
      WavReader#1.ReadSamples(100) = 40
  )"));
  EXPECT_THAT(engine.CallsWith("is not the same"), Transcript(R"(
      printf("output samples is not the same with input, totalSamples = %d, return = %d, expect = %d\n", 1, 160, 200)
  )"));
  EXPECT_THAT(engine.CallsWith("notSame"),
              ElementsAre("printf(\"notSame = %d, total = %d\\n\", 1, 8)"));
}

TEST(TestVoiceChangerEx, WritesNoMoreThanItsArrayHoldsAndEndsAtACountThatIsNone) {
  for (const auto& [count, written] : {std::pair(9000, 8192U), {0, 0U}, {-5, 0U}}) {
    FakeEngine engine;
    engine.wavs["voice.wav"] = {16000, 1, Shorts(20000, 1)};
    engine.script<VoiceChangerScript>().process = [count = count](short*, short* samples) {
      *samples = static_cast<short>(count);
      return count;
    };

    TestVoiceChangerEx();

    EXPECT_THAT(engine.wavs["voice_changer_out.wav"].samples, SizeIs(written)) << count;
    EXPECT_THAT(engine.CallsWith("Process"), SizeIs(1)) << count;
  }
}

TEST(TestVoiceChangerEx, PrintsZerosWhenTheInputIsMissing) {
  FakeEngine engine;

  TestVoiceChangerEx();

  EXPECT_THAT(engine.CallsWith("printf"), Transcript(R"(
      printf("TestInFile Fs = %d, ch = %d\n", 0, 0)
      printf("notSame = %d, total = %d\n", 0, 0)
  )"));
  EXPECT_THAT(engine.wavs["voice_changer_out.wav"].samples, IsEmpty());
}
