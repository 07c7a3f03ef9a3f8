#include <gmock/gmock.h>

#include <numeric>
#include <vector>

#include "bench/enhancement/routines.h"
#include "fake_engine/aec/aec_module.h"
#include "fake_engine/enhancement/agc.h"
#include "fake_engine/enhancement/block_gain.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// 44 bytes that are no header of anything, and then the samples.
std::string HeaderAndSamples(char header, const std::vector<short>& samples) {
  return std::string(44, header) +
         std::string(reinterpret_cast<const char*>(samples.data()), 2 * samples.size());
}

// The samples after the header.
std::vector<short> SamplesOf(const FakeEngine& engine, const std::string& name) {
  const std::string bytes = engine.Bytes(name);
  std::vector<short> samples((bytes.size() - 44) / 2);
  bytes.copy(reinterpret_cast<char*>(samples.data()), 2 * samples.size(), 44);
  return samples;
}

std::vector<short> Ramp(int samples, short start = 1) {
  std::vector<short> ramp(static_cast<size_t>(samples));
  std::iota(ramp.begin(), ramp.end(), start);
  return ramp;
}

}  // namespace

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
  EXPECT_EQ(SamplesOf(engine, "out.wav"), expected);
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
  EXPECT_EQ(SamplesOf(engine, "out.wav"), negated);
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

  EXPECT_EQ(SamplesOf(engine, "out.wav"), Ramp(80));
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
