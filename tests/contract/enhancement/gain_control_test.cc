#include <gmock/gmock.h>

#include <vector>

#include "bench/enhancement/routines.h"
#include "contract/pcm_files.h"
#include "fake_engine/enhancement/agc.h"
#include "fake_engine/enhancement/block_gain.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(TestAGCProcess, WorksInPlaceAndNeverFeedsTheLevelBack) {
  FakeEngine engine;
  engine.PutFile("in.wav", HeaderAndSamples('h', Ramp(160 + 160 + 159)));
  auto& script = engine.script<AgcScript>();
  script.virtualMic = [](int16_t* samples, int count) {
    for (int i = 0; i < count; ++i) samples[i] = static_cast<int16_t>(samples[i] + 1);
    return 70;
  };
  script.process = [](int16_t* samples, int count) {
    for (int i = 0; i < count; ++i) samples[i] = static_cast<int16_t>(samples[i] * 10);
    return 90;
  };

  TestAGCProcess("in.wav", "out.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.wav, rb)
      fopen(out.wav, wb)
      fread(in.wav, 1, 44) = 44
      fwrite(out.wav, 1, 44)
      WebRtcAgc_Create() = WebRtcAgc#1
      WebRtcAgc_Init(#1, 0, 255, 2, 16000)
      WebRtcAgc_set_config(#1, 3, 0, 1)
      fread(in.wav, 320, 1) = 1
      WebRtcAgc_VirtualMic(#1, @1, 1, 160, 0, 0 -> 70)
      WebRtcAgc_Process(#1, @1, 1, 160, @1, 0, 70 -> 90, 0, 0)
      fwrite(out.wav, 320, 1)
      fread(in.wav, 320, 1) = 1  # What came out stays where it is: the next block starts from it.
      WebRtcAgc_VirtualMic(#1, @1, 1, 160, 0, 90 -> 70)
      WebRtcAgc_Process(#1, @1, 1, 160, @1, 0, 70 -> 90, 0, 1)
      fwrite(out.wav, 320, 1)
      fread(in.wav, 320, 1) = 0
      WebRtcAgc_Free(#1)
      fclose(in.wav)
      fclose(out.wav)
  )"));
  EXPECT_EQ(engine.Bytes("out.wav").substr(0, 44), std::string(44, 'h'));
  std::vector<short> expected = Ramp(320);
  for (short& sample : expected) sample = static_cast<short>((sample + 1) * 10);
  EXPECT_EQ(SamplesFrom(engine, "out.wav", 44), expected);
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAGCProcess, MakesAndFreesItsGainControlWhenTheInputIsMissing) {
  FakeEngine engine;

  TestAGCProcess("in.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("WebRtcAgc_"), SizeIs(4));
  EXPECT_EQ(engine.Bytes("out.wav"), "");
  EXPECT_THAT(engine.CallsWith("printf"), IsEmpty());
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAGCProcess, ReadsToTheEndWhenTheOutputCannotBeWritten) {
  FakeEngine engine;
  engine.PutFile("in.wav", HeaderAndSamples('h', Ramp(320)));
  engine.unwritable = {"out.wav"};

  TestAGCProcess("in.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("WebRtcAgc_Process"), SizeIs(2));
  EXPECT_THAT(engine.CallsWith("fclose"), ElementsAre("fclose(in.wav)"));
}

TEST(TestSpeexAgc, ControlsWholeBlocksInPlaceAndReleasesLastOpenedFirst) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {22050, 2, Ramp(441 + 441 + 440)};  // 441, not 2 x 220.
  engine.script<BlockGainScript>().process = [](short* block) { std::fill_n(block, 441, 9); };

  TestSpeexAgc();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(music.wav)
      AudioAgc#1(22050, 2)
      AudioAgc#1.EnableAGC(true)
      WavWriter#1(agc_out.wav, 22050, 2)
      WavReader#1.ReadSamples(441) = 441
      AudioAgc#1.Process
      WavWriter#1.WriteSamples(441)
      WavReader#1.ReadSamples(441) = 441
      AudioAgc#1.Process
      WavWriter#1.WriteSamples(441)
      WavReader#1.ReadSamples(441) = 440  # Dropped.
      ~WavWriter#1
      ~AudioAgc#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["agc_out.wav"].samples, std::vector<short>(882, 9));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestSpeexAgc, StopsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;

  TestSpeexAgc();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(music.wav)
      AudioAgc#1(0, 0)
      AudioAgc#1.EnableAGC(true)
      WavWriter#1(agc_out.wav, 0, 0)
      ~WavWriter#1
      ~AudioAgc#1
      ~WavReader#1
  )"));
}

TEST(TestWebrtcAgc, ControlsTheCaptureSideInPlace) {
  FakeEngine engine;
  engine.wavs["niannujiao_44100_1.wav"] = {44100, 1, Ramp(441 + 440)};
  engine.script<BlockGainScript>().process = [](short* block) { std::fill_n(block, 441, -9); };

  TestWebrtcAgc();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(niannujiao_44100_1.wav)
      WebrtcAgc#1(44100, 1)
      WebrtcAgc#1.EnableAGC(true)
      WavWriter#1(agc_out.wav, 44100, 1)
      WavReader#1.ReadSamples(441) = 441
      WebrtcAgc#1.ProcessCapture(false)
      WavWriter#1.WriteSamples(441)
      WavReader#1.ReadSamples(441) = 440
      ~WavWriter#1
      ~WebrtcAgc#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.wavs["agc_out.wav"].samples, Each(-9));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestWebrtcAgc, StopsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;

  TestWebrtcAgc();

  EXPECT_THAT(engine.CallsWith("ProcessCapture"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("ReadSamples"), IsEmpty());
  EXPECT_THAT(engine.live, IsEmpty());
}
