#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/effects/drc.h"
#include "fake_engine/effects/frame_effect.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

}  // namespace

TEST(TestMdrc, CompressesWholeFramesThenReleasesLastOpenedFirst) {
  FakeEngine engine;
  engine.wavs["voice.wav"] = {16000, 1, Shorts(160 + 160 + 100, 1)};

  TestMdrc();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(voice.wav)
      WavWriter#1(mdrc.wav, 16000, 1)
      printf("TestInFile Fs = %d, ch = %d\n", 16000, 1)
      MultibandDrc#1()
      MultibandDrc#1.Init()
      WavReader#1.ReadSamples(160) = 160
      MultibandDrc#1.Process(16000 Hz, 1, 160)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 160
      MultibandDrc#1.Process(16000 Hz, 1, 160)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 100
      ~MultibandDrc#1
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestMdrc, WritesTheFrameOfEachBlock) {
  FakeEngine engine;
  engine.wavs["voice.wav"] = {44100, 2, Shorts(2 * 882, 10)};
  engine.script<FrameEffectScript>().process = [](zuwebrtc::AudioFrame& frame) {
    EXPECT_EQ(frame.id_, -1);
    EXPECT_EQ(frame.energy_, 0xffffffffU);
    frame.id_ = 5;
    frame.energy_ = 5;
    std::fill_n(frame.data_, 882, short{20});
    return 0U;
  };

  TestMdrc();

  EXPECT_THAT(engine.CallsWith("Process(44100 Hz, 2, 441)"), SizeIs(2));
  EXPECT_EQ(engine.wavs["mdrc.wav"].samples, Shorts(2 * 882, 20));
}

TEST(TestMdrc, PrintsItsLineAndWritesAnEmptyFileWithoutItsInput) {
  FakeEngine engine;

  TestMdrc();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(voice.wav)
      WavWriter#1(mdrc.wav, 0, 0)
      printf("TestInFile Fs = %d, ch = %d\n", 0, 0)
      MultibandDrc#1()
      MultibandDrc#1.Init()
      ~MultibandDrc#1
      ~WavWriter#1
      ~WavReader#1
  )"));
}

// Every sample of a block is written from the frame, also where rate / 100 leaves a rest.
TEST(TestMdrc, PutsTheWholeBlockIntoTheFrame) {
  FakeEngine engine;
  engine.wavs["voice.wav"] = {22050, 2, Shorts(441, 9)};

  TestMdrc();

  EXPECT_EQ(engine.wavs["mdrc.wav"].samples, Shorts(441, 9));
  EXPECT_THAT(engine.CallsWith("Process(22050 Hz, 2, 220)"), SizeIs(1));
}

TEST(TestDrc, CompressesWholeBlocksThenReleasesInOrder) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {44100, 2, Shorts(882 + 881, 1)};
  engine.script<DrcScript>().process = [](short* samples, int count) {
    std::fill_n(samples, count, short{5});
  };

  TestDrc();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(music.wav)
      Drc#1()
      WavWriter#1(drc_out.wav, 44100, 2)
      WavReader#1.ReadSamples(882) = 882
      Drc#1.Process(2, 441)  # Channels, then samples per channel.
      WavWriter#1.WriteSamples(882)
      WavReader#1.ReadSamples(882) = 881
      ~WavWriter#1
      ~Drc#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["drc_out.wav"].samples, Shorts(882, 5));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestDrc, LeavesOutWhatIsOverOfABlockThatTheChannelsDoNotDivide) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {22050, 2, Shorts(441, 1)};
  engine.script<DrcScript>().process = [](short* samples, int count) {
    std::fill_n(samples, count, short{5});
  };

  TestDrc();

  Shorts expected(441, 5);
  expected[440] = 1;  // 441 samples are 220 frames and one more.
  EXPECT_EQ(engine.wavs["drc_out.wav"].samples, expected);
}

TEST(TestDrc, WritesAnEmptyFileWithoutItsInput) {
  FakeEngine engine;

  TestDrc();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(music.wav)
      Drc#1()
      WavWriter#1(drc_out.wav, 0, 0)
      ~WavWriter#1
      ~Drc#1
      ~WavReader#1
  )"));
}
