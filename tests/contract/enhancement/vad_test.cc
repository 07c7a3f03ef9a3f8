// The gates and marker tracks of the voice activity tests.

#include <gmock/gmock.h>

#include <numeric>

#include "bench/enhancement/routines.h"
#include "fake_engine/enhancement/voice_detection.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Samples = std::vector<short>;

std::string BytesOf(const Samples& samples) {
  return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(short)};
}

// 44 bytes that are no header at all: they are copied as they stand.
std::string Header() {
  std::string header(44, '\0');
  std::iota(header.begin(), header.end(), 'A');
  return header;
}

// Frames of `length` samples, all 1 in the first, all 2 in the second, and so on.
Samples Frames(int frames, size_t length) {
  Samples samples;
  for (int i = 1; i <= frames; ++i) samples.insert(samples.end(), length, static_cast<short>(i));
  return samples;
}

// Answers with these kinds, one after the other, the last one for ever.
void Answer(FakeEngine& engine, std::vector<int> kinds) {
  engine.script<VoiceDetectionScript>().detect = [kinds, next = size_t{0}](const short*,
                                                                           unsigned) mutable {
    const int kind = kinds[std::min(next, kinds.size() - 1)];
    ++next;
    return static_cast<VADResultKind>(kind);
  };
}

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

TEST(TestVADProcess, GatesFramesAndReleasesInOrder) {
  FakeEngine engine;
  engine.PutFile("in.wav", Header() + BytesOf(Frames(2, 160)));
  Answer(engine, {0, 1});

  TestVADProcess("in.wav", "gated.wav", "track.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.wav, rb)
      fopen(track.wav, wb)
      fread(in.wav, 1, 44) = 44
      fwrite(track.wav, 1, 44)
      fopen(gated.wav, wb)
      fwrite(gated.wav, 1, 44)
      CVoiceDetectionEx#1(16000, 1)
      CVoiceDetectionEx#1.SetVoiceDetectionMode(0)
      WebRtcVad_Create() = #1
      WebRtcVad_Init(#1)
      WebRtcVad_set_mode(#1, 2)
      fread(in.wav, 320, 1) = 1
      CVoiceDetectionEx#1.Detect(160) = 0
      fwrite(gated.wav, 320, 1)
      fwrite(track.wav, 320, 1)
      fread(in.wav, 320, 1) = 1
      CVoiceDetectionEx#1.Detect(160) = 1
      fwrite(gated.wav, 320, 1)
      fwrite(track.wav, 320, 1)
      fread(in.wav, 320, 1) = 0
      ~CVoiceDetectionEx#1
      fclose(in.wav)
      fclose(gated.wav)
      fclose(track.wav)
      WebRtcVad_Free(#1)
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestVADProcess, TakesVoiceAndOtherSoundAndNothingElse) {
  FakeEngine engine;
  engine.PutFile("in.wav", Header() + BytesOf(Frames(4, 160)));
  Answer(engine, {3, 1, 2, 0});

  TestVADProcess("in.wav", "gated.wav", "track.wav");

  Samples gated = Frames(4, 160);
  std::fill_n(gated.begin() + 160, 320, short{0});
  Samples track(640, 30000);
  std::fill_n(track.begin() + 160, 320, short{0});
  EXPECT_EQ(engine.Bytes("gated.wav"), Header() + BytesOf(gated));
  EXPECT_EQ(engine.Bytes("track.wav"), Header() + BytesOf(track));
}

TEST(TestVADProcess, KeepsTheHeaderAlsoWhenATailIsDropped) {
  FakeEngine engine;
  engine.PutFile("in.wav", Header() + BytesOf(Frames(2, 159)));
  Answer(engine, {0});

  TestVADProcess("in.wav", "gated.wav", "track.wav");

  EXPECT_EQ(engine.Bytes("gated.wav"), Header() + BytesOf(Frames(2, 159)).substr(0, 320));
  EXPECT_EQ(engine.Bytes("track.wav"), Header() + BytesOf(Samples(160, 30000)));
}

TEST(TestVADProcess, TakesAnyHeaderForSixteenKilohertzMono) {
  FakeEngine engine;
  engine.wavs["stereo.wav"] = {48000, 2, Frames(3, 160)};
  engine.PutFile("in.wav", "RIFF" + std::string(40, '\x7f') + BytesOf(Frames(3, 160)));
  TestVADProcess("in.wav", "gated.wav", "track.wav");
  EXPECT_THAT(engine.CallsWith("CVoiceDetectionEx#1("),
              ElementsAre("CVoiceDetectionEx#1(16000, 1)"));
  EXPECT_THAT(engine.CallsWith("Detect(160)"), SizeIs(3));
}

TEST(TestVADProcess, LeavesBareHeadersForLessThanAFrame) {
  FakeEngine engine;
  engine.PutFile("in.wav", Header() + std::string(319, 'x'));
  TestVADProcess("in.wav", "gated.wav", "track.wav");
  EXPECT_EQ(engine.Bytes("gated.wav"), Header());
  EXPECT_EQ(engine.Bytes("track.wav"), Header());

  FakeEngine cut;
  cut.PutFile("in.wav", "RIFF");
  TestVADProcess("in.wav", "gated.wav", "track.wav");
  EXPECT_EQ(cut.Bytes("gated.wav"), "RIFF");
}

TEST(TestVADProcess, SaysThatTheSourceIsMissingAndCreatesNothing) {
  FakeEngine engine;
  TestVADProcess("in.wav", "gated.wav", "track.wav");
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.wav, rb) = null
      puts("Open Source File Error..")
  )"));
}

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
  const std::vector<std::string> reads = engine.CallsWith("ReadSamples");
  EXPECT_THAT(std::vector<std::string>(reads.begin(), reads.begin() + 4), Transcript(R"(
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(1) = 1
      WavReader#1.ReadSamples(80) = 80
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

TEST(TestVadResult, WritesThreeLevelsAndNothingForUnknown) {
  FakeEngine engine;
  engine.wavs["swb_ref_16kHz.wav"] = {16000, 2, Frames(4, 320)};
  Answer(engine, {0, 2, 3, 1});

  TestVadResult();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(swb_ref_16kHz.wav)
      WavWriter#1(vad_out.wav, 16000, 2)
      WavWriter#2(vad_result.wav, 16000, 2)
      CVoiceDetectionEx#1(16000, 2)
      CVoiceDetectionEx#1.SetVoiceDetectionMode(1)
      WavReader#1.ReadSamples(320) = 320
      CVoiceDetectionEx#1.Detect(320) = 0
      WavWriter#1.WriteSamples(320)
      WavWriter#2.WriteSamples(320)
      WavReader#1.ReadSamples(320) = 320
      CVoiceDetectionEx#1.Detect(320) = 2
      WavReader#1.ReadSamples(320) = 320
      CVoiceDetectionEx#1.Detect(320) = 3
      WavWriter#1.WriteSamples(320)
      WavWriter#2.WriteSamples(320)
      WavReader#1.ReadSamples(320) = 320
      CVoiceDetectionEx#1.Detect(320) = 1
      WavWriter#1.WriteSamples(320)
      WavWriter#2.WriteSamples(320)
      WavReader#1.ReadSamples(320) = 0
      ~CVoiceDetectionEx#1
      ~WavWriter#2
      ~WavWriter#1
      ~WavReader#1
  )"));
  Samples audio(960);
  std::fill_n(audio.begin(), 320, short{1});
  EXPECT_EQ(engine.wavs["vad_out.wav"].samples, audio);
  Samples levels(960, 0);
  std::fill_n(levels.begin(), 320, short{32000});
  std::fill_n(levels.begin() + 320, 320, short{12767});
  EXPECT_EQ(engine.wavs["vad_result.wav"].samples, levels);
}

// Rate / 100 first: 220 frames, not 220.5.
TEST(TestVadResult, TruncatesTheFrameBeforeItCountsChannels) {
  FakeEngine engine;
  engine.wavs["swb_ref_16kHz.wav"] = {22050, 2, Samples(441)};
  TestVadResult();
  EXPECT_THAT(engine.CallsWith("ReadSamples"), Transcript(R"(
      WavReader#1.ReadSamples(440) = 440
      WavReader#1.ReadSamples(440) = 1
  )"));
}

TEST(TestVadResult, LeavesEmptyFilesWhenTheInputIsMissing) {
  FakeEngine engine;
  TestVadResult();
  EXPECT_THAT(engine.CallsWith(".Detect("), IsEmpty());
  EXPECT_THAT(engine.wavs["vad_out.wav"].samples, IsEmpty());
  EXPECT_THAT(engine.live, IsEmpty());
}
