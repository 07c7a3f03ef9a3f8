// The gates of the voice activity tests.

#include <gmock/gmock.h>

#include <numeric>

#include "bench/enhancement/routines.h"
#include "contract/enhancement/vad_frames.h"
#include "fake_engine/enhancement/voice_detection.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::string BytesOf(const Samples& samples) {
  return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(short)};
}

// 44 bytes that are no header at all: they are copied as they stand.
std::string Header() {
  std::string header(44, '\0');
  std::iota(header.begin(), header.end(), 'A');
  return header;
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
