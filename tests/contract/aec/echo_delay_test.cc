#include <gmock/gmock.h>

#include "bench/aec/routines.h"
#include "contract/pcm_files.h"
#include "fake_engine/aec/echo_delay_est.h"
#include "fake_engine/aec/webrtc_aec.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

void PutPair(FakeEngine& engine, int farSamples, int nearSamples) {
  engine.PutFile("far.wav", HeaderAndSamples('f', Ramp(farSamples, 1)));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(nearSamples, 5001)));
}

}  // namespace

TEST(TestEchoDelayEst, FeedsWholeFramesFarBeforeNear) {
  FakeEngine engine;
  PutPair(engine, 160 + 160 + 160, 160 + 160 + 159);

  TestEchoDelayEst("far.wav", "near.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(far.wav, rb)
      fseek(far.wav, 44, 0)
      fopen(near.wav, rb)
      fseek(near.wav, 44, 0)
      CEchoDelayEst#1(16000, 1)
      fread(far.wav, 320, 1) = 1
      fread(near.wav, 320, 1) = 1
      CEchoDelayEst#1.ProcessFar(1.., 160)
      CEchoDelayEst#1.ProcessNear(5001.., 160)
      fread(far.wav, 320, 1) = 1
      fread(near.wav, 320, 1) = 1
      CEchoDelayEst#1.ProcessFar(161.., 160)
      CEchoDelayEst#1.ProcessNear(5161.., 160)
      fread(far.wav, 320, 1) = 1
      fread(near.wav, 320, 1) = 0
      fclose(far.wav)
      fclose(near.wav)
      ~CEchoDelayEst#1
  )"));
}

TEST(TestEchoDelayEst, LogsEveryHundredthFrame) {
  for (const int frames : {99, 100, 250}) {
    FakeEngine engine;
    PutPair(engine, 160 * frames, 160 * frames);
    int asked = 0;
    engine.script<EchoDelayEstScript>().delay = [&asked] { return 70 + ++asked; };

    TestEchoDelayEst("far.wav", "near.wav");

    std::string expected;
    if (frames >= 100) {
      expected += R"(
          CEchoDelayEst#1.GetDelay() = 71
          OutputDebugInfo("TestEchoDelayEst: %d, %d", 100, 71)
      )";
    }
    if (frames >= 200) {
      expected += R"(
          CEchoDelayEst#1.GetDelay() = 72
          OutputDebugInfo("TestEchoDelayEst: %d, %d", 200, 72)
      )";
    }
    std::vector<std::string> said;
    for (const std::string& call : engine.calls) {
      if (call.find("GetDelay") != std::string::npos || call.find("OutputDebugInfo") == 0) {
        said.push_back(call);
      }
    }
    EXPECT_THAT(said, Transcript(expected)) << frames;
  }
}

TEST(TestEchoDelayEst, SaysNothingWithoutInputs) {
  FakeEngine engine;

  TestEchoDelayEst("far.wav", "near.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(far.wav, rb) = null
      fopen(near.wav, rb) = null
      CEchoDelayEst#1(16000, 1)
      ~CEchoDelayEst#1
  )"));
}

TEST(TestEchoDelayEstAndAEC, CancelsWithTheDelayFoundSoFar) {
  FakeEngine engine;
  PutPair(engine, 160 + 160 + 159, 160 + 160 + 160);
  int asked = 0;
  engine.script<EchoDelayEstScript>().delay = [&asked] { return 40 * ++asked; };
  engine.script<WebrtcAecScript>().process = [&engine](const float* near, float* out, int count) {
    for (int i = 0; i < count; ++i) out[i] = -near[i];
    engine.nowMs += 7;
  };

  TestEchoDelayEstAndAEC("far.wav", "near.wav", "out.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(far.wav, rb)
      fread(far.wav, 1, 44) = 44
      fopen(near.wav, rb)
      fread(near.wav, 1, 44) = 44
      fopen(out.wav, wb)
      fwrite(out.wav, 1, 44)
      WebRtcAec_Create() = WebRtcAec#1
      WebRtcAec_Init(#1, 16000, 16000)
      WebRtcAec_set_config(#1, 2, 0, 0, 0)
      CEchoDelayEst#1(16000, 1)
      GetExactTickCount() = 0
      fread(far.wav, 320, 1) = 1
      fread(near.wav, 320, 1) = 1
      CEchoDelayEst#1.ProcessFar(1.., 160)
      CEchoDelayEst#1.ProcessNear(5001.., 160)
      CEchoDelayEst#1.GetDelay() = 40
      OutputDebugInfo("TestEchoDelayEstAndAEC: %d, %d", 1, 40)
      WebRtcAec_BufferFarend(#1, 1.0..160.0, 160)
      WebRtcAec_Process(#1, 5001.0.., 1, 160, 40, 0)
      fwrite(out.wav, 320, 1)
      fread(far.wav, 320, 1) = 1
      fread(near.wav, 320, 1) = 1
      CEchoDelayEst#1.ProcessFar(161.., 160)
      CEchoDelayEst#1.ProcessNear(5161.., 160)
      CEchoDelayEst#1.GetDelay() = 80
      OutputDebugInfo("TestEchoDelayEstAndAEC: %d, %d", 2, 80)
      WebRtcAec_BufferFarend(#1, 161.0..320.0, 160)
      WebRtcAec_Process(#1, 5161.0.., 1, 160, 80, 0)
      fwrite(out.wav, 320, 1)
      fread(far.wav, 320, 1) = 0
      GetExactTickCount() = 14
      OutputDebugInfo("%d", 14)
      fclose(far.wav)
      fclose(near.wav)
      fclose(out.wav)
      WebRtcAec_Free(#1)
      ~CEchoDelayEst#1
  )"));
  EXPECT_EQ(SamplesFrom(engine, "out.wav", 44), Negated(Ramp(320, 5001)));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestEchoDelayEstAndAEC, KeepsTheNearEndsHeaderAsItIs) {
  FakeEngine engine;
  PutPair(engine, 160, 3 * 160);

  TestEchoDelayEstAndAEC("far.wav", "near.wav", "out.wav");

  const std::string out = engine.Bytes("out.wav");
  EXPECT_EQ(out.substr(0, 44), std::string(44, 'n'));
  EXPECT_EQ(out.size(), 44u + 320u);  // The far end has ended.
}

// 70000 ms are 4464 and 40000 ms are -25536 in 16 bits.
TEST(TestEchoDelayEstAndAEC, NarrowsTheDelayTo16Bits) {
  for (const auto& [delay, narrowed] :
       {std::pair{70000, "4464"}, std::pair{40000, "-25536"}, std::pair{-1, "-1"}}) {
    FakeEngine engine;
    PutPair(engine, 160, 160);
    engine.script<EchoDelayEstScript>().delay = [d = delay] { return d; };

    TestEchoDelayEstAndAEC("far.wav", "near.wav", "out.wav");

    EXPECT_THAT(
        engine.CallsWith("WebRtcAec_Process"),
        ElementsAre("WebRtcAec_Process(#1, 5001.0.., 1, 160, " + std::string(narrowed) + ", 0)"));
    EXPECT_THAT(engine.CallsWith("AndAEC: "),
                ElementsAre("OutputDebugInfo(\"TestEchoDelayEstAndAEC: %d, %d\", 1, " +
                            std::to_string(delay) + ")"));
  }
}

TEST(TestEchoDelayEstAndAEC, WrapsWhatLeavesTheRangeAndTruncatesTheRest) {
  FakeEngine engine;
  PutPair(engine, 160, 160);
  engine.script<WebrtcAecScript>().process = [](const float*, float* out, int count) {
    std::fill_n(out, count, 0.0F);
    const float values[] = {40000.7F, -40000.7F, 32767.9F, 32768.0F, 1.9F, -1.9F};
    std::copy(std::begin(values), std::end(values), out);
  };

  TestEchoDelayEstAndAEC("far.wav", "near.wav", "out.wav");

  std::vector<short> out = SamplesFrom(engine, "out.wav", 44);
  out.resize(6);
  EXPECT_THAT(out, ElementsAre(-25536, 25536, 32767, -32768, 1, -1));
}

TEST(TestEchoDelayEstAndAEC, TimesAnEmptyRunWhenTheInputsAreMissing) {
  FakeEngine engine;

  TestEchoDelayEstAndAEC("far.wav", "near.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), ElementsAre("OutputDebugInfo(\"%d\", 0)"));
  EXPECT_THAT(engine.CallsWith("WebRtcAec_"), SizeIs(4));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAECProcess, CancelsHeaderlessFilesWithTheDefaultsAndTheGivenDelay) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(160 + 160 + 159, 1));
  engine.PutSamples("near.pcm", Ramp(160 + 160 + 160, 5001));
  engine.script<WebrtcAecScript>().process = [](const float* near, float* out, int count) {
    for (int i = 0; i < count; ++i) out[i] = -near[i];
  };

  TestAECProcess("far.pcm", "near.pcm", "out.pcm", 89);

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(far.pcm, rb)
      fopen(near.pcm, rb)
      fopen(out.pcm, wb)
      WebRtcAec_Create() = WebRtcAec#1
      WebRtcAec_Init(#1, 16000, 16000)
      fread(far.pcm, 320, 1) = 1
      fread(near.pcm, 320, 1) = 1
      OutputDebugInfo("TestAECProcess: %d, %d", 1, 89)
      WebRtcAec_BufferFarend(#1, 1.0..160.0, 160)
      WebRtcAec_Process(#1, 5001.0.., 1, 160, 89, 0)
      fwrite(out.pcm, 320, 1)
      fread(far.pcm, 320, 1) = 1
      fread(near.pcm, 320, 1) = 1
      OutputDebugInfo("TestAECProcess: %d, %d", 2, 89)
      WebRtcAec_BufferFarend(#1, 161.0..320.0, 160)
      WebRtcAec_Process(#1, 5161.0.., 1, 160, 89, 0)
      fwrite(out.pcm, 320, 1)
      fread(far.pcm, 320, 1) = 0
      fclose(far.pcm)
      fclose(near.pcm)
      fclose(out.pcm)
      WebRtcAec_Free(#1)
  )"));
  EXPECT_EQ(engine.Values<short>("out.pcm"), Negated(Ramp(320, 5001)));
  EXPECT_THAT(engine.live, IsEmpty());
}

// An engine may write its output while it still reads the near end.
TEST(TestAECProcess, HandsOverAnOutputThatIsNotTheNearEndLikeItsNeighbour) {
  FakeEngine engine;
  PutPair(engine, 320, 320);
  int blocks = 0;
  engine.script<WebrtcAecScript>().process = [&](const float* near, float* out, int count) {
    ++blocks;
    EXPECT_TRUE(out + count <= near || near + count <= out);
  };

  TestAECProcess("far.wav", "near.wav", "out.pcm", 0);
  TestEchoDelayEstAndAEC("far.wav", "near.wav", "out.wav");

  EXPECT_GE(blocks, 4);
}

TEST(TestAECProcess, NarrowsTheDelayTo16Bits) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(160));
  engine.PutSamples("near.pcm", Ramp(160));

  TestAECProcess("far.pcm", "near.pcm", "out.pcm", 40000);

  EXPECT_THAT(engine.CallsWith("WebRtcAec_Process"),
              ElementsAre("WebRtcAec_Process(#1, 1.0.., 1, 160, -25536, 0)"));
  EXPECT_THAT(engine.CallsWith("TestAECProcess"),
              ElementsAre("OutputDebugInfo(\"TestAECProcess: %d, %d\", 1, 40000)"));
}

TEST(TestAECProcess, WrapsWhatLeavesTheRange) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(160));
  engine.PutSamples("near.pcm", Ramp(160));
  engine.script<WebrtcAecScript>().process = [](const float*, float* out, int count) {
    std::fill_n(out, count, 40000.7F);
  };

  TestAECProcess("far.pcm", "near.pcm", "out.pcm", 0);

  EXPECT_EQ(engine.Values<short>("out.pcm"), std::vector<short>(160, -25536));
}

TEST(TestAECProcess, LeavesAnEmptyOutputWhenAnInputIsMissing) {
  FakeEngine engine;
  engine.PutSamples("far.pcm", Ramp(160));

  TestAECProcess("far.pcm", "near.pcm", "out.pcm", 0);

  EXPECT_EQ(engine.Bytes("out.pcm"), "");
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), IsEmpty());
  EXPECT_THAT(engine.live, IsEmpty());
}
