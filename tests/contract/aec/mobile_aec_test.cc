#include <gmock/gmock.h>

#include "bench/aec/routines.h"
#include "contract/pcm_files.h"
#include "fake_engine/aec/aec_mobile.h"
#include "fake_engine/aec/audio_buffer.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Pair;
using testing::SizeIs;

namespace {

void Negate(const int16_t* near, int16_t* out, int count) {
  for (int i = 0; i < count; ++i) out[i] = static_cast<int16_t>(-near[i]);
}

}  // namespace

TEST(TestZUAECProcess, CancelsBandByBandFarBeforeNear) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(320, 1));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(160 + 160 + 159, 5001)));
  engine.script<AecMobileScript>().process = Negate;

  TestZUAECProcess("far.pcm", "near.wav", "out.wav", 123);

  // #1 is the near end's buffer, #2 the far end's, #3 the output's.
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(far.pcm, rb)
      fopen(near.wav, rb)
      fopen(out.wav, wb)
      fread(near.wav, 1, 44) = 44
      fwrite(out.wav, 1, 44)
      AecMobile_Creat() = AecMobile#1
      AecMobile_Init(#1, 16000, 16000, 16000)
      AecMobile_SetAecNewOn(#1, 0)
      AudioBuffer#1(160, 1, 160, 1, 160)
      AudioBuffer#2(160, 1, 160, 1, 160)
      AudioBuffer#3(160, 1, 160, 1, 160)
      fread(far.pcm, 320, 1) = 1
      fread(near.wav, 320, 1) = 1
      AudioBuffer#2.DeinterleaveFrom(160, 16000 Hz, 1 ch)
      AecMobile_BufferFarend(#1, 1..160, 160)
      AudioBuffer#1.DeinterleaveFrom(160, 16000 Hz, 1 ch)
      AecMobile_Process_Bands(#1, 5001.., 1, 160, cleared, 0, 1, 1)
      AecMobile_GetEchoState(#1) = 0
      AecMobile_getDelay(#1) = 0
      OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 1, 0, 0)
      AudioBuffer#3.InterleaveTo(160, 16000 Hz, 1 ch, true)
      fwrite(out.wav, 320, 1)
      fread(far.pcm, 320, 1) = 1
      fread(near.wav, 320, 1) = 1
      AudioBuffer#2.DeinterleaveFrom(160, 16000 Hz, 1 ch)
      AecMobile_BufferFarend(#1, 161..320, 160)
      AudioBuffer#1.DeinterleaveFrom(160, 16000 Hz, 1 ch)
      AecMobile_Process_Bands(#1, 5161.., 1, 160, cleared, 0, 1, 1)
      AecMobile_GetEchoState(#1) = 0
      AecMobile_getDelay(#1) = 0
      OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 2, 0, 0)
      AudioBuffer#3.InterleaveTo(160, 16000 Hz, 1 ch, true)
      fwrite(out.wav, 320, 1)
      fread(far.pcm, 320, 1) = 0
      fread(near.wav, 320, 1) = 0
      fclose(far.pcm)
      fclose(near.wav)
      fclose(out.wav)
      AecMobile_Free(#1)
  )"));
  EXPECT_EQ(engine.Bytes("out.wav").substr(0, 44), std::string(44, 'n'));
  EXPECT_EQ(SamplesFrom(engine, "out.wav", 44), Negated(Ramp(320, 5001)));
  EXPECT_THAT(engine.live, ElementsAre(Pair("AudioBuffer", 3)));  // Never released.
}

TEST(TestZUAECProcess, LogsEchoStateAndDelayAndStartsEachStateFromZero) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(480));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(480)));
  int asked = 0;
  engine.script<AecMobileScript>().echoState = [&asked] { return ++asked == 2 ? 1 : -1; };
  engine.script<AecMobileScript>().delay = [&asked] { return 30 * asked; };

  TestZUAECProcess("far.pcm", "near.wav", "out.wav", 0);

  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), Transcript(R"(
      OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 1, 0, 30)
      OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 2, 1, 60)
      OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 3, 0, 90)
  )"));
}

TEST(TestZUAECProcess, OpensNoFarEndWithoutANameAndCancelsAgainstSilence) {
  FakeEngine engine;
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(320)));

  TestZUAECProcess(nullptr, "near.wav", "out.wav", 0);

  EXPECT_THAT(engine.CallsWith("fopen"), Transcript(R"(
      fopen(near.wav, rb)
      fopen(out.wav, wb)
  )"));
  EXPECT_THAT(engine.CallsWith("BufferFarend"), Transcript(R"(
      AecMobile_BufferFarend(#1, 0..0, 160)
      AecMobile_BufferFarend(#1, 0..0, 160)
  )"));
  EXPECT_THAT(engine.CallsWith("fclose"), Transcript(R"(
      fclose(near.wav)
      fclose(out.wav)
  )"));
  EXPECT_EQ(SamplesFrom(engine, "out.wav", 44), Ramp(320));
}

TEST(TestZUAECProcess, GoesOnAgainstSilenceWhenTheFarEndIsMissing) {
  FakeEngine engine;
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(160)));

  TestZUAECProcess("far.pcm", "near.wav", "out.wav", 0);

  EXPECT_THAT(engine.CallsWith("far.pcm"), ElementsAre("fopen(far.pcm, rb) = null"));
  EXPECT_THAT(engine.CallsWith("BufferFarend"),
              ElementsAre("AecMobile_BufferFarend(#1, 0..0, 160)"));
}

// A part of a frame is silence from its first sample on.
TEST(TestZUAECProcess, GoesOnAgainstSilenceWhenTheFarEndEnds) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(160 + 159));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(4 * 160)));

  TestZUAECProcess("far.pcm", "near.wav", "out.wav", 0);

  EXPECT_THAT(engine.CallsWith("BufferFarend"), Transcript(R"(
      AecMobile_BufferFarend(#1, 1..160, 160)
      AecMobile_BufferFarend(#1, 0..0, 160)
      AecMobile_BufferFarend(#1, 0..0, 160)
      AecMobile_BufferFarend(#1, 0..0, 160)
  )"));
  EXPECT_THAT(SamplesFrom(engine, "out.wav", 44), SizeIs(4 * 160));
}

// A far end that is a WAVE comes with its header: 22 samples late, and with a click.
TEST(TestZUAECProcess, ReadsTheFarEndFromItsFirstByte) {
  FakeEngine engine;
  engine.PutFile("far.wav", HeaderAndSamples('\1', Ramp(160)));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(160)));

  TestZUAECProcess("far.wav", "near.wav", "out.wav", 0);

  EXPECT_THAT(engine.CallsWith("BufferFarend"),
              ElementsAre("AecMobile_BufferFarend(#1, 257..138, 160)"));
}

TEST(TestZUAECProcess, ClearsTheAlignedSignalsBeforeEveryFrame) {
  FakeEngine engine;
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(3 * 160)));

  TestZUAECProcess(nullptr, "near.wav", "out.wav", 0);

  EXPECT_THAT(engine.CallsWith("160, cleared, "), SizeIs(3));
}

TEST(TestZUAECProcess, StopsAtOnceWhenTheNearEndIsMissing) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(160));

  TestZUAECProcess("far.pcm", "near.wav", "out.wav", 0);

  EXPECT_THAT(engine.CallsWith("AecMobile_Process_Bands"), SizeIs(0));
  EXPECT_EQ(engine.Bytes("out.wav"), "");
  EXPECT_THAT(engine.calls.back(), "AecMobile_Free(#1)");
}

TEST(TestTemp, SuppressesTheNoiseOfOneSignalOnBothEnds) {
  FakeEngine engine;
  engine.PutSamples("wrpcmin.pcm", Ramp(80 + 80 + 79));
  engine.script<AecMobileScript>().process = Negate;

  TestTemp();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(wrpcmin.pcm, rb)
      fopen(NSout.pcm, wb)
      AecMobile_Creat() = AecMobile#1
      AecMobile_Init(#1, 8000, 8000, 8000)
      AecMobile_SetAecNewOn(#1, 0)
      AudioBuffer#1(80, 1, 80, 1, 80)
      AudioBuffer#2(80, 1, 80, 1, 80)
      AudioBuffer#3(80, 1, 80, 1, 80)
      fread(wrpcmin.pcm, 160, 1) = 1
      AudioBuffer#2.DeinterleaveFrom(80, 8000 Hz, 1 ch)
      AecMobile_BufferFarend(#1, 1..80, 80)
      AudioBuffer#1.DeinterleaveFrom(80, 8000 Hz, 1 ch)
      AecMobile_Process_Bands(#1, 1.., 1, 80, cleared, 0, 0, 1)
      AecMobile_GetEchoState(#1) = 0
      AecMobile_getDelay(#1) = 0
      OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 1, 0, 0)
      AudioBuffer#3.InterleaveTo(80, 8000 Hz, 1 ch, true)
      fwrite(NSout.pcm, 160, 1)
      fread(wrpcmin.pcm, 160, 1) = 1
      AudioBuffer#2.DeinterleaveFrom(80, 8000 Hz, 1 ch)
      AecMobile_BufferFarend(#1, 81..160, 80)
      AudioBuffer#1.DeinterleaveFrom(80, 8000 Hz, 1 ch)
      AecMobile_Process_Bands(#1, 81.., 1, 80, cleared, 0, 0, 1)
      AecMobile_GetEchoState(#1) = 0
      AecMobile_getDelay(#1) = 0
      OutputDebugInfo("TestZUAECProcess: %d, %d, %d", 2, 0, 0)
      AudioBuffer#3.InterleaveTo(80, 8000 Hz, 1 ch, true)
      fwrite(NSout.pcm, 160, 1)
      fread(wrpcmin.pcm, 160, 1) = 0
      AecMobile_Free(#1)
      fclose(wrpcmin.pcm)
      fclose(NSout.pcm)
  )"));
  EXPECT_EQ(engine.Values<short>("NSout.pcm"), Negated(Ramp(160)));
  EXPECT_THAT(engine.live, ElementsAre(Pair("AudioBuffer", 3)));
}

// As many samples as the frame says once the output is in it, of all its channels.
TEST(TestTemp, WritesWhatTheBufferLeavesInTheFrameLikeItsNeighbour) {
  FakeEngine engine;
  engine.PutSamples("wrpcmin.pcm", Ramp(80));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(160)));
  engine.script<AudioBufferScript>().interleave = [](zuwebrtc::AudioFrame& frame) {
    frame.samples_per_channel_ = 30;
    frame.num_channels_ = 2;
  };

  TestTemp();
  TestZUAECProcess(nullptr, "near.wav", "out.wav", 0);

  EXPECT_EQ(engine.Values<short>("NSout.pcm"), Ramp(60));
  EXPECT_EQ(SamplesFrom(engine, "out.wav", 44), Ramp(60));
}

TEST(TestTemp, GoesThroughWithoutItsFiles) {
  FakeEngine engine;
  engine.unwritable = {"NSout.pcm"};
  TestTemp();
  EXPECT_THAT(engine.CallsWith("AecMobile_Process_Bands"), SizeIs(0));

  engine.PutSamples("wrpcmin.pcm", Ramp(160));
  TestTemp();
  EXPECT_THAT(engine.CallsWith("AecMobile_Process_Bands"), SizeIs(2));
  EXPECT_THAT(engine.CallsWith("fwrite"), SizeIs(0));
}

TEST(TestAECNsNoizeus, WalksTheCorpusNoiseByNoise) {
  FakeEngine engine;
  engine.PutSamples("NOIZEUS/in/car/5dB/sp07_car_sn5.pcm", Ramp(160 + 79));

  TestAECNsNoizeus();

  std::vector<std::string> expected;
  for (const std::string noise :
       {"airport", "babble", "car", "exhibition", "restaurant", "station", "street", "train"}) {
    for (const std::string level : {"0", "5", "10", "15"}) {
      for (int i = 1; i <= 30; ++i) {
        const std::string sentence = (i < 10 ? "sp0" : "sp") + std::to_string(i);
        const std::string name = sentence + "_" + noise + "_sn" + level;
        const bool found = name == "sp07_car_sn5";
        expected.push_back("fopen(NOIZEUS/in/" + noise + "/" + level + "dB/" + name + ".pcm, rb)" +
                           (found ? "" : " = null"));
        expected.push_back("fopen(NOIZEUS/out/" + name + "_aec.pcm, wb)");
      }
    }
  }
  EXPECT_THAT(engine.CallsWith("fopen"), Transcript(expected));
  EXPECT_THAT(engine.Values<short>("NOIZEUS/out/sp07_car_sn5_aec.pcm"),
              ElementsAreArray(Ramp(160)));
  EXPECT_THAT(engine.CallsWith("fclose"), SizeIs(960 + 1));
  EXPECT_THAT(engine.CallsWith("AecMobile_Free"), SizeIs(960));
  // Input before output, before the next sentence is opened.
  const std::vector<std::string> files = engine.CallsWith("sp07_car_sn5");
  EXPECT_THAT(files[files.size() - 2], "fclose(NOIZEUS/in/car/5dB/sp07_car_sn5.pcm)");
  EXPECT_THAT(files.back(), "fclose(NOIZEUS/out/sp07_car_sn5_aec.pcm)");
  EXPECT_THAT(engine.live, Contains(Pair("AudioBuffer", 3 * 960)));
}
