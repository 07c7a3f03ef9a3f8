#include <gmock/gmock.h>

#include <vector>

#include "bench/enhancement/routines.h"
#include "contract/pcm_files.h"
#include "fake_engine/aec/aec_module.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(TestZUAudioProcessing, CancelsFrameByFrameAndKeepsTheFarEndsHeader) {
  FakeEngine engine;
  engine.PutFile("far.wav", HeaderAndSamples('f', Ramp(3 * 160)));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(160 + 160 + 159, 5001)));
  std::vector<short> rendered;
  engine.script<AecModuleScript>().render = [&rendered](zuwebrtc::AudioFrame& frame) {
    rendered.insert(rendered.end(), frame.data_, frame.data_ + 160);
  };
  engine.script<AecModuleScript>().capture = [](zuwebrtc::AudioFrame& frame) {
    for (short& sample : frame.data_) sample = static_cast<short>(-sample);
  };

  TestZUAudioProcessing("far.wav", "near.wav", "out.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(far.wav, rb)
      fopen(near.wav, rb)
      fread(far.wav, 1, 44) = 44
      fread(near.wav, 1, 44) = 44
      fopen(out.wav, wb)
      fwrite(out.wav, 1, 44)
      SoftwareAec#1()  # And no format.
  )" + Times(2, R"(
      fread(far.wav, 320, 1) = 1
      fread(near.wav, 320, 1) = 1
      SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)
      SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, false)
      fwrite(out.wav, 320, 1)
  )") + R"(
      fread(far.wav, 320, 1) = 1
      fread(near.wav, 320, 1) = 0
      OutputDebugInfo("Vad result: %d, %d, %d", 0, 0, 0)
      fclose(far.wav)
      fclose(near.wav)
      fclose(out.wav)
      ~SoftwareAec#1
  )"));
  EXPECT_EQ(engine.Bytes("out.wav").substr(0, 44), std::string(44, 'f'));
  EXPECT_EQ(rendered, Ramp(320));
  std::vector<short> negated = Ramp(320, 5001);
  for (short& sample : negated) sample = static_cast<short>(-sample);
  EXPECT_EQ(SamplesFrom(engine, "out.wav", 44), negated);
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUAudioProcessing, CountsWhatTheModuleSaysOfEachFrame) {
  FakeEngine engine;
  engine.PutFile("far.wav", HeaderAndSamples('f', Ramp(9 * 160)));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(9 * 160)));
  int frames = 0;
  engine.script<AecModuleScript>().capture = [&frames](zuwebrtc::AudioFrame& frame) {
    constexpr zuwebrtc::VADActivity kSaid[] = {
        zuwebrtc::kVadUnknown, zuwebrtc::kVadActive,  zuwebrtc::kVadPassive,
        zuwebrtc::kVadPassive, zuwebrtc::kVadUnknown, zuwebrtc::kVadActiveWithoutVoice,
        zuwebrtc::kVadActive,  zuwebrtc::kVadActive,  zuwebrtc::kVadActive};
    frame.vad_activity_ = kSaid[frames++];
  };

  TestZUAudioProcessing("far.wav", "near.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"),
              ElementsAre("OutputDebugInfo(\"Vad result: %d, %d, %d\", 4, 2, 1)"));
}

// What is left in a frame is still there in the next block: the module says something of the first
// one only.
TEST(TestZUAudioProcessing, KeepsTheSameTwoFramesOverAllBlocks) {
  FakeEngine engine;
  engine.PutFile("far.wav", HeaderAndSamples('f', Ramp(4 * 160)));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(4 * 160)));
  int frames = 0;
  engine.script<AecModuleScript>().capture = [&frames](zuwebrtc::AudioFrame& frame) {
    if (frames++ == 0) frame.vad_activity_ = zuwebrtc::kVadPassive;
  };
  engine.script<AecModuleScript>().render = [](zuwebrtc::AudioFrame& frame) { frame.id_ = 5; };

  TestZUAudioProcessing("far.wav", "near.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("Audio("), Transcript(R"(
      SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)
      SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, false)
  )" + Times(3, R"(
      SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, used, false)
      SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, used, false, false)
  )")));
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"),
              ElementsAre("OutputDebugInfo(\"Vad result: %d, %d, %d\", 0, 4, 0)"));
}

// Samples per channel count, not channels.
TEST(TestZUAudioProcessing, WritesAsManySamplesAsTheModuleLeavesPerChannel) {
  FakeEngine engine;
  engine.PutFile("far.wav", HeaderAndSamples('f', Ramp(160)));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(160)));
  engine.script<AecModuleScript>().capture = [](zuwebrtc::AudioFrame& frame) {
    frame.samples_per_channel_ = 80;
    frame.num_channels_ = 2;
  };

  TestZUAudioProcessing("far.wav", "near.wav", "out.wav");

  EXPECT_EQ(SamplesFrom(engine, "out.wav", 44), Ramp(80));
}

TEST(TestZUAudioProcessing, StopsAtTheEndOfTheFarEndWithoutReadingTheNearEnd) {
  FakeEngine engine;
  engine.PutFile("far.wav", HeaderAndSamples('f', Ramp(160)));
  engine.PutFile("near.wav", HeaderAndSamples('n', Ramp(3 * 160)));

  TestZUAudioProcessing("far.wav", "near.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("fread(near.wav, 320"), SizeIs(1));
  EXPECT_EQ(engine.Bytes("out.wav").size(), 44u + 320u);
}

TEST(TestZUAudioProcessing, GoesThroughWithoutAnyInput) {
  FakeEngine engine;

  TestZUAudioProcessing("far.wav", "near.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"),
              ElementsAre("OutputDebugInfo(\"Vad result: %d, %d, %d\", 0, 0, 0)"));
  EXPECT_EQ(engine.Bytes("out.wav"), "");
  EXPECT_THAT(engine.live, IsEmpty());
}
