// The marker tracks of the voice activity tests.

#include <gmock/gmock.h>

#include <numeric>

#include "bench/enhancement/routines.h"
#include "contract/enhancement/vad_frames.h"
#include "fake_engine/enhancement/voice_detection.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

// Channel `channel` of `channels`.
Samples Channel(const Samples& samples, size_t channel, size_t channels) {
  Samples one;
  for (size_t i = channel; i < samples.size(); i += channels) one.push_back(samples[i]);
  return one;
}

// TestVADProcessRefined on a file of this rate and content: what it writes.
Samples Refine(FakeEngine& engine, int rate, const Samples& samples, int* segments, int shift) {
  engine.wavs["in.wav"] = {rate, 1, samples};
  TestVADProcessRefined("in.wav", "out.wav", segments, shift);
  return engine.wavs["out.wav"].samples;
}

}  // namespace

TEST(TestVADProcessRefined, PutsTracksBesideTheRecording) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {8000, 1, Frames(2, 80)};
  Answer(engine, {3, 2});
  int segments[] = {0, 10, -1};

  TestVADProcessRefined("in.wav", "out.wav", segments, 0);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      CVoiceDetectionEx#1(8000, 1)
      CVoiceDetectionEx#1.SetVoiceDetectionMode(0)
      WavWriter#1(out.wav, 8000, 3)
      WavReader#1.ReadSamples(80) = 80
      CVoiceDetectionEx#1.Detect(80) = 3
      WavWriter#1.WriteSamples(240)
      WavReader#1.ReadSamples(80) = 80
      CVoiceDetectionEx#1.Detect(80) = 2
      WavWriter#1.WriteSamples(240)
      WavReader#1.ReadSamples(80) = 0
      ~CVoiceDetectionEx#1
      ~WavWriter#1
      ~WavReader#1
  )"));
  const Samples& out = engine.wavs["out.wav"].samples;
  EXPECT_EQ(Channel(out, 0, 3), Frames(2, 80));
  Samples markers(160, 30000);
  std::fill_n(markers.begin() + 80, 80, short{0});
  EXPECT_EQ(Channel(out, 1, 3), markers);
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestVADProcessRefined, WritesTwoChannelsWithoutSegments) {
  FakeEngine engine;
  Answer(engine, {1, 0});
  Samples ramp(320);
  std::iota(ramp.begin(), ramp.end(), short{-100});
  const Samples out = Refine(engine, 16000, ramp, nullptr, 0);
  EXPECT_EQ(engine.wavs["out.wav"].channels, 2);
  EXPECT_EQ(Channel(out, 0, 2), ramp);
  Samples markers(320);
  std::fill_n(markers.begin() + 160, 160, short{30000});
  EXPECT_EQ(Channel(out, 1, 2), markers);
}

// The last sample is moved first: upwards, each would be overwritten before its turn.
TEST(TestVADProcessRefined, HandsTheDetectorTheFrameBeforeItIsMoved) {
  FakeEngine engine;
  Samples heard;
  engine.script<VoiceDetectionScript>().detect = [&](const short* samples, unsigned count) {
    heard.insert(heard.end(), samples, samples + count);
    return vadResultIsPassive;
  };
  int segments[] = {-1};
  const Samples ramp = Frames(3, 110);
  const Samples out = Refine(engine, 11025, ramp, segments, 0);
  EXPECT_EQ(heard, ramp);
  EXPECT_EQ(Channel(out, 0, 3), ramp);
  EXPECT_EQ(Channel(out, 2, 3), Samples(330, 0));
}

TEST(TestVADProcessRefined, MarksOneSampleMoreThanASegmentsLength) {
  FakeEngine engine;
  int segments[] = {1000, 160, -1};
  const Samples track = Channel(Refine(engine, 8000, Samples(2000), segments, 0), 2, 3);
  EXPECT_EQ(std::count(track.begin(), track.end(), 30000), 161);
  EXPECT_EQ(track[999], 0);
  EXPECT_EQ(track[1000], 30000);
  EXPECT_EQ(track[1160], 30000);
  EXPECT_EQ(track[1161], 0);
}

TEST(TestVADProcessRefined, LetsTheLastStartedOfOverlappingSegmentsDecide) {
  FakeEngine engine;
  int segments[] = {100, 500, 200, 50, 400, 20, -1, 700, 10};
  const Samples track = Channel(Refine(engine, 8000, Samples(800), segments, 0), 2, 3);
  Samples expected(800);
  std::fill_n(expected.begin() + 100, 151, short{30000});  // The second one ends at 250
  std::fill_n(expected.begin() + 400, 21, short{30000});   // and the third at 420, for good.
  EXPECT_EQ(track, expected);
}

TEST(TestVADProcessRefined, MarksNothingOfASegmentThatEndsBeforeTheFile) {
  FakeEngine engine;
  int segments[] = {-2147483647 - 1, 10, -20, 25, -1};
  const Samples track = Channel(Refine(engine, 8000, Samples(80), segments, 0), 2, 3);
  Samples expected(80);
  std::fill_n(expected.begin(), 6, short{30000});  // Of the second one, which starts 20 before it.
  EXPECT_EQ(track, expected);
  int early[] = {-2147483647 - 1, 10, -1};
  EXPECT_EQ(Channel(Refine(engine, 8000, Samples(80), early, 0), 2, 3), Samples(80));
}

TEST(TestVADProcessRefined, CountsPositionsAfterTheShift) {
  FakeEngine engine;
  int segments[] = {0, 0, -1};
  Samples ramp(165);
  std::iota(ramp.begin(), ramp.end(), short{0});
  const Samples out = Refine(engine, 8000, ramp, segments, 3);
  EXPECT_EQ(out.size(), 480U);
  EXPECT_EQ(out[0], 3);
  EXPECT_EQ(out[2], 30000);
  EXPECT_EQ(out[5], 0);
  EXPECT_THAT(engine.CallsWith("ReadSamples"), Transcript(R"(
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(80) = 80
      WavReader#1.ReadSamples(80) = 80
      WavReader#1.ReadSamples(80) = 2
  )"));
}

TEST(TestVADProcessRefined, StopsShiftingAtTheEndOfTheFile) {
  FakeEngine engine;
  EXPECT_THAT(Refine(engine, 8000, Samples(2), nullptr, 2000000000), IsEmpty());
  EXPECT_THAT(engine.CallsWith("ReadSamples"), Transcript(R"(
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(1) = 0
      WavReader#1.ReadSamples(80) = 0
  )"));
  FakeEngine unshifted;
  EXPECT_THAT(Refine(unshifted, 8000, Samples(80), nullptr, -5), SizeIs(160));
}

// The engine is the child's: files in memory would be in the way of what observes its death.
TEST(TestVADProcessRefinedDeathTest, AbortsUnlessTheFileIsMono) {
  const auto refine = [](int channels) {
    FakeEngine engine;
    if (channels > 0) engine.wavs["in.wav"] = {8000, channels, Samples(160)};
    TestVADProcessRefined("in.wav", "out.wav", nullptr, 0);
    exit(0);
  };
  EXPECT_EXIT(refine(2), testing::KilledBySignal(SIGABRT), "");
  EXPECT_EXIT(refine(0), testing::KilledBySignal(SIGABRT), "");
  EXPECT_EXIT(refine(1), testing::ExitedWithCode(0), "");
}
