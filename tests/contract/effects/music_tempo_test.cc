#include <gmock/gmock.h>

#include <stdexcept>

#include "bench/effects/routines.h"
#include "fake_engine/effects/beat_track.h"
#include "fake_engine/effects/soundtouch_recorder.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

constexpr const char* kInput = "yedegangqinqu_Fs44100_Ch1.wav";

}  // namespace

TEST(TestBeatTrack, TracksWholeBlocksStopsAndReleasesInOrder) {
  FakeEngine engine;
  engine.wavs[kInput] = {44100, 1, Shorts(441 + 441 + 440)};

  TestBeatTrack();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(yedegangqinqu_Fs44100_Ch1.wav)
      CreateBeatTrack(44100, 1) = IBeatTrack#1
      fopen(BeatTrack.txt, wb)
      IBeatTrack#1.Start(0, notify, 0)
      WavReader#1.ReadSamples(441) = 441
      IBeatTrack#1.Detectbeat(@1, 441) = 0
      WavReader#1.ReadSamples(441) = 441
      IBeatTrack#1.Detectbeat(@1, 441) = 0
      WavReader#1.ReadSamples(441) = 440
      IBeatTrack#1.Stop()
      ~IBeatTrack#1
      fclose(BeatTrack.txt)
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.Bytes("BeatTrack.txt"), "");
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestBeatTrack, WritesEachBeatWithTheTimeOfTheEngine) {
  FakeEngine engine;
  engine.nowMs = 3000000000U;
  engine.wavs[kInput] = {8000, 1, Shorts(2 * 80)};
  engine.script<BeatTrackScript>().detect = [&](IBeatTrackNotify* notify, const short*, int) {
    engine.nowMs += 10;
    notify->NotifyBeat(128, 0.1F);
    if (engine.nowMs == 3000000020U) notify->NotifyStartFive();
    return 0;
  };
  engine.script<BeatTrackScript>().stop = [](IBeatTrackNotify* notify) {
    notify->NotifyBeat(-1, 1.0F);
  };

  TestBeatTrack();

  EXPECT_EQ(engine.Bytes("BeatTrack.txt"),
            "bpm = 128, power = 0.100000, time = 3000000010\n"
            "bpm = 128, power = 0.100000, time = 3000000020\n"
            "Notify Start, time = 3000000020\n"
            "bpm = -1, power = 1.000000, time = 3000000020\n");
  EXPECT_THAT(engine.CallsWith("fprintf"), Transcript(R"(
      fprintf(BeatTrack.txt, "bpm = %d, power = %f, time = %u\n", 128, 0.100000, 3000000010)
      fprintf(BeatTrack.txt, "bpm = %d, power = %f, time = %u\n", 128, 0.100000, 3000000020)
      fprintf(BeatTrack.txt, "Notify Start, time = %u\n", 3000000020)
      fprintf(BeatTrack.txt, "bpm = %d, power = %f, time = %u\n", -1, 1.000000, 3000000020)
  )"));
}

TEST(TestBeatTrack, PrintsEachStatusThatIsNotZeroAndGoesOn) {
  FakeEngine engine;
  engine.wavs[kInput] = {44100, 2, Shorts(4 * 882)};
  int block = 0;
  engine.script<BeatTrackScript>().detect = [&](IBeatTrackNotify*, const short*, int) {
    const int statuses[] = {-2, 0, 1, 0};
    return statuses[block++];
  };

  TestBeatTrack();

  EXPECT_EQ(block, 4);
  EXPECT_THAT(engine.CallsWith("CreateBeatTrack"),
              ElementsAre("CreateBeatTrack(44100, 2) = IBeatTrack#1"));
  EXPECT_THAT(engine.CallsWith("printf(\"Test"), Transcript(R"(
      printf("TestBeatTrack: res = %d.\n", -2)
      printf("TestBeatTrack: res = %d.\n", 1)
  )"));
}

TEST(TestBeatTrack, TellsNobodyWhenItsFileCannotBeOpened) {
  FakeEngine engine;
  engine.unwritable.insert("BeatTrack.txt");
  engine.wavs[kInput] = {8000, 1, Shorts(80)};
  engine.script<BeatTrackScript>().detect = [](IBeatTrackNotify* notify, const short*, int) {
    notify->NotifyBeat(120, 0.5F);
    notify->NotifyStartFive();
    return 0;
  };

  TestBeatTrack();

  EXPECT_THAT(engine.CallsWith("fprintf"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("fclose"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("Stop"), SizeIs(1));
}

TEST(TestBeatTrack, LeavesAnEmptyListWhenTheInputIsMissing) {
  FakeEngine engine;

  TestBeatTrack();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(yedegangqinqu_Fs44100_Ch1.wav)
      CreateBeatTrack(0, 0) = IBeatTrack#1
      fopen(BeatTrack.txt, wb)
      IBeatTrack#1.Start(0, notify, 0)
      IBeatTrack#1.Stop()
      ~IBeatTrack#1
      fclose(BeatTrack.txt)
      ~WavReader#1
  )"));
}

TEST(TestSoundTouchBpm, FeedsFramesOfWholeBlocksAndPrintsTheTempo) {
  FakeEngine engine;
  engine.wavs[kInput] = {44100, 2, Shorts(882 + 882 + 881)};
  engine.script<SoundTouchScript>().bpm = [] { return 123.456F; };

  TestSoundTouchBpm();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(yedegangqinqu_Fs44100_Ch1.wav)
      BPMDetect#1(2, 44100)
      WavReader#1.ReadSamples(882 floats) = 882
      BPMDetect#1.inputSamples(@1, 441)  # Frames, not samples.
      WavReader#1.ReadSamples(882 floats) = 882
      BPMDetect#1.inputSamples(@1, 441)
      WavReader#1.ReadSamples(882 floats) = 881
      BPMDetect#1.getBpm()
      printf("bpm=%f\n", 123.456001)
      ~BPMDetect#1
      ~WavReader#1
  )"));
}

TEST(TestSoundTouchBpm, PrintsATempoAlsoOfNothing) {
  FakeEngine engine;
  engine.wavs[kInput] = {44100, 1, {}};

  TestSoundTouchBpm();

  EXPECT_THAT(engine.CallsWith("inputSamples"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("printf"), ElementsAre("printf(\"bpm=%f\\n\", 0.000000)"));
}

TEST(TestSoundTouchBpm, PrintsWhatTheLibraryMeasures) {
  FakeEngine engine;
  Shorts clicks(10 * 44100);  // 120 a minute.
  for (size_t i = 0; i < clicks.size(); ++i) {
    if (i % 22050 < 200) clicks[i] = i % 40 < 20 ? 20000 : -20000;
  }
  engine.wavs[kInput] = {44100, 1, clicks};

  TestSoundTouchBpm();

  const std::vector<std::string> lines = engine.CallsWith("bpm=%f");
  ASSERT_THAT(lines, SizeIs(1));
  EXPECT_NEAR(std::stod(lines[0].substr(lines[0].find(", ") + 2)), 120, 1);
}

TEST(TestSoundTouchBpm, HandsOnWhatTheLibraryThrows) {
  FakeEngine engine;
  engine.wavs[kInput] = {7000, 1, Shorts(70)};

  EXPECT_THROW(TestSoundTouchBpm(), std::runtime_error);

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(yedegangqinqu_Fs44100_Ch1.wav)
      ~WavReader#1
  )"));
}
