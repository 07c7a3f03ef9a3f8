#include <gmock/gmock.h>

#include <map>

#include "bench/aec/routines.h"
#include "contract/aec/pcm_files.h"
#include "fake_engine/aec/aec_module.h"
#include "fake_engine/effects/audio_resampler_ex.h"
#include "fake_engine/fake_engine.h"

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

void NegateFrame(zuwebrtc::AudioFrame& frame) {
  for (short& sample : frame.data_) sample = static_cast<short>(-sample);
}

}  // namespace

TEST(TestZUAec, CancelsWholeBlocksOf16kHzMonoWithoutAConverter) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {16000, 1, Ramp(160 + 160 + 160, 5001)};
  engine.wavs["far.wav"] = {16000, 1, Ramp(160 + 160 + 159)};
  engine.script<AecModuleScript>().capture = NegateFrame;

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  const std::vector<std::string> block = {
      "WavReader#1.ReadSamples(160) = 160", "WavReader#2.ReadSamples(160) = 160",
      "SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)",
      "SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true)",
      "WavWriter#1.WriteSamples(160)"};
  std::vector<std::string> expected = {"SoftwareAec#1()", "SoftwareAec#1.SetFsAndCh(16000, 1, 0)",
                                       "WavReader#1(near.wav)", "WavReader#2(far.wav)",
                                       "WavWriter#1(out.wav, 16000, 1)"};
  Append(expected, block);
  Append(expected, block);
  Append(expected, {"WavReader#1.ReadSamples(160) = 160", "WavReader#2.ReadSamples(160) = 159",
                    "IAudioResamplerEx::Destroy(null)", "~SoftwareAec#1", "~WavWriter#1",
                    "~WavReader#2", "~WavReader#1"});
  EXPECT_THAT(engine.calls, ElementsAreArray(expected));
  EXPECT_EQ(engine.wavs["out.wav"].samples, Negated(Ramp(320, 5001)));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUAec, RunsThePlatformsModuleOnRequest) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {16000, 1, Ramp(160)};
  engine.wavs["far.wav"] = {16000, 1, Ramp(160)};

  TestZUAec("near.wav", "far.wav", "out.wav", false);

  EXPECT_THAT(
      engine.CallsWith("HardwareAec"),
      ElementsAre("CreateHardwareAec() = HardwareAec#1", "HardwareAec#1.SetFsAndCh(16000, 1, 0)",
                  "HardwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)",
                  "HardwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true)",
                  "~HardwareAec#1"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUAec, GivesTheModuleANewFrameInEveryBlock) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {16000, 1, Ramp(480)};
  engine.wavs["far.wav"] = {16000, 1, Ramp(480)};
  engine.script<AecModuleScript>().capture = [](zuwebrtc::AudioFrame& frame) {
    frame.vad_activity_ = zuwebrtc::kVadActive;
  };
  engine.script<AecModuleScript>().render = [](zuwebrtc::AudioFrame& frame) { frame.id_ = 5; };

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  EXPECT_THAT(engine.CallsWith("Audio("), SizeIs(6));
  EXPECT_THAT(engine.CallsWith("used"), IsEmpty());
}

// One converter, made in the first block without being asked whether the format changed; both ends
// go through it in turn, in place.
TEST(TestZUAec, ConvertsBothEndsWithOneConverterInPlace) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {48000, 2, std::vector<short>(960 + 960, 7)};
  engine.wavs["far.wav"] = {48000, 2, std::vector<short>(960 + 960, 3)};

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  const std::vector<std::string> reads = {"WavReader#1.ReadSamples(960) = 960",
                                          "WavReader#2.ReadSamples(960) = 960"};
  const std::vector<std::string> block = {
      "IAudioResamplerEx#1.Convert(@1, 960, @1, 160) = 1",
      "IAudioResamplerEx#1.Convert(@2, 960, @2, 160) = 1",
      "SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)",
      "SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true)",
      "WavWriter#1.WriteSamples(160)"};
  std::vector<std::string> expected = {"SoftwareAec#1()", "SoftwareAec#1.SetFsAndCh(16000, 1, 0)",
                                       "WavReader#1(near.wav)", "WavReader#2(far.wav)",
                                       "WavWriter#1(out.wav, 16000, 1)"};
  Append(expected, reads);
  Append(expected, {"IAudioResamplerEx::Destroy(null)",
                    "GetPlaceString(TestZUAec, audio_engine/core/audio_tester, 2624)",
                    "IAudioResamplerEx::Create(480, 48000, 2, 160, 16000, 1, the place) = "
                    "IAudioResamplerEx#1"});
  Append(expected, block);
  Append(expected, reads);
  Append(expected, {"IAudioResamplerEx#1.IsFormatChange(48000, 2, 16000, 1) = 0"});
  Append(expected, block);
  Append(expected, {"WavReader#1.ReadSamples(960) = 0",
                    "IAudioResamplerEx::Destroy(IAudioResamplerEx#1)", "~IAudioResamplerEx#1",
                    "~SoftwareAec#1", "~WavWriter#1", "~WavReader#2", "~WavReader#1"});
  EXPECT_THAT(engine.calls, ElementsAreArray(expected));
  EXPECT_EQ(engine.wavs["out.wav"].samples, std::vector<short>(320, 7));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUAec, MakesAnotherConverterWhenItsFormatChanged) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {8000, 1, Ramp(3 * 80)};
  engine.wavs["far.wav"] = {8000, 1, Ramp(3 * 80)};
  int asked = 0;
  engine.script<AudioResamplerExScript>().isFormatChange = [&asked] { return ++asked == 1; };

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  const std::string create = "IAudioResamplerEx::Create(80, 8000, 1, 160, 16000, 1, the place) = ";
  EXPECT_THAT(
      engine.CallsWith("IAudioResamplerEx::"),
      ElementsAre("IAudioResamplerEx::Destroy(null)", create + "IAudioResamplerEx#1",
                  "IAudioResamplerEx::Destroy(IAudioResamplerEx#1)", create + "IAudioResamplerEx#2",
                  "IAudioResamplerEx::Destroy(IAudioResamplerEx#2)"));
}

TEST(TestZUAec, ConvertsWhenOnlyTheChannelsOrOnlyTheRateDiffer) {
  for (const auto& [rate, channels, samples] :
       {std::tuple{16000, 2, 320}, std::tuple{32000, 1, 320}, std::tuple{22050, 2, 441}}) {
    FakeEngine engine;
    engine.wavs["near.wav"] = {rate, channels, Ramp(samples)};
    engine.wavs["far.wav"] = {rate, channels, Ramp(samples)};

    TestZUAec("near.wav", "far.wav", "out.wav", true);

    const std::string count = std::to_string(samples);
    EXPECT_THAT(engine.CallsWith(".Convert("),
                ElementsAre("IAudioResamplerEx#1.Convert(@1, " + count + ", @1, 160) = 1",
                            "IAudioResamplerEx#1.Convert(@2, " + count + ", @2, 160) = 1"))
        << rate;
    EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(160));
  }
}

TEST(TestZUAec, WritesNothingAndKeepsItsModuleWhenTheFormatsDiffer) {
  for (const FakeWav& far : {FakeWav{16000, 2, {}}, FakeWav{48000, 1, {}}}) {
    for (const bool software : {true, false}) {
      FakeEngine engine;
      engine.wavs["near.wav"] = {48000, 2, Ramp(960)};
      engine.wavs["far.wav"] = {far.rate, far.channels, Ramp(960)};

      TestZUAec("near.wav", "far.wav", "out.wav", software);

      const std::string module = software ? "SoftwareAec" : "HardwareAec";
      EXPECT_THAT(engine.calls,
                  ElementsAre(software ? "SoftwareAec#1()" : "CreateHardwareAec() = HardwareAec#1",
                              module + "#1.SetFsAndCh(16000, 1, 0)", "WavReader#1(near.wav)",
                              "WavReader#2(far.wav)", "~WavReader#2", "~WavReader#1"));
      EXPECT_THAT(engine.live, ElementsAre(Pair(module, 1)));
    }
  }
}

TEST(TestZUAec, LeavesAnEmptyOutputWhenBothInputsAreMissing) {
  FakeEngine engine;

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  EXPECT_THAT(engine.CallsWith("ReadSamples"), IsEmpty());
  EXPECT_THAT(engine.wavs["out.wav"].samples, IsEmpty());
  EXPECT_THAT(engine.live, IsEmpty());
}

// What the first run in this process does differs from the others, so it is kept for the tests.
class TestSoftAecRoutine : public testing::Test {
 protected:
  struct Run {
    std::vector<std::string> calls;
    std::map<std::string, int> live;
    std::vector<short> out;
    bool hasMetrics = false;
    std::string metrics;
  };

  static void SetUpTestSuite() {
    if (!first.calls.empty()) return;  // The tests are repeated.
    FakeEngine engine;
    engine.wavs["music_delay/findcap.wav"] = {48000, 2, std::vector<short>(960 + 959, 7)};
    engine.wavs["music_delay/findreceive.wav"] = {8000, 1, std::vector<short>(80 + 80, 3)};
    engine.script<AecModuleScript>().capture = NegateFrame;
    TestSoftAec();
    first = {engine.calls, engine.live, engine.wavs["music_delay/out.wav"].samples,
             engine.HasFile("music_delay/echo_metrics.txt"),
             engine.Bytes("music_delay/echo_metrics.txt")};
  }

  static Run first;
};

TestSoftAecRoutine::Run TestSoftAecRoutine::first;

TEST_F(TestSoftAecRoutine, GivesTheModuleEachFrameInItsOwnFormat) {
  EXPECT_THAT(
      first.calls,
      ElementsAre(
          "fopen(music_delay/echo_metrics.txt, wb)", "SoftwareAec#1()",
          "SoftwareAec#1.SetFsAndCh(16000, 1, 0)", "WavReader#1(music_delay/findcap.wav)",
          "WavReader#2(music_delay/findreceive.wav)", "WavWriter#1(music_delay/out.wav, 16000, 1)",
          "WavReader#1.ReadSamples(960) = 960", "WavReader#2.ReadSamples(80) = 80",
          "SoftwareAec#1.ProcessRenderAudio(80, 8000 Hz, 1 ch, true)",
          "SoftwareAec#1.ProcessCaptureAudio(480, 48000 Hz, 2 ch, true, false)",
          "WavWriter#1.WriteSamples(160)", "WavReader#1.ReadSamples(960) = 959", "~SoftwareAec#1",
          "fclose(music_delay/echo_metrics.txt)", "~WavWriter#1", "~WavReader#2", "~WavReader#1"));
  // 160 samples, whatever the frame holds.
  EXPECT_EQ(first.out, std::vector<short>(160, -7));
  EXPECT_THAT(first.live, IsEmpty());
}

TEST_F(TestSoftAecRoutine, LeavesItsMetricsEmpty) {
  EXPECT_TRUE(first.hasMetrics);
  EXPECT_EQ(first.metrics, "");
}

TEST_F(TestSoftAecRoutine, OpensItsMetricsInTheFirstRunOnly) {
  FakeEngine again;
  again.wavs["music_delay/findcap.wav"] = {16000, 1, Ramp(160)};
  again.wavs["music_delay/findreceive.wav"] = {16000, 1, Ramp(160)};

  TestSoftAec();

  EXPECT_THAT(again.CallsWith("echo_metrics"), IsEmpty());
  EXPECT_THAT(again.CallsWith("fclose"), IsEmpty());
  EXPECT_EQ(again.wavs["music_delay/out.wav"].samples, Ramp(160));
}

TEST_F(TestSoftAecRoutine, StopsAtTheFirstShortReadOfEitherEnd) {
  for (const auto& [near, far] : {std::pair{161, 480}, std::pair{480, 319}}) {
    FakeEngine engine;
    engine.wavs["music_delay/findcap.wav"] = {16000, 1, Ramp(near)};
    engine.wavs["music_delay/findreceive.wav"] = {16000, 1, Ramp(far)};

    TestSoftAec();

    EXPECT_THAT(engine.CallsWith("ProcessCapture"), SizeIs(1));
  }
}

TEST(TestHardwareAec, ControlsAndCleansTheCaptureSideAlone) {
  FakeEngine engine;
  engine.wavs["noise_in.wav"] = {22050, 2, Ramp(441 + 441 + 440)};
  engine.script<AecModuleScript>().capture = NegateFrame;

  TestHardwareAec();

  const std::vector<std::string> block = {
      "WavReader#1.ReadSamples(441) = 441",
      "HardwareAec#1.ProcessCaptureAudio(220, 22050 Hz, 2 ch, false, true)",
      "WavWriter#1.WriteSamples(440)"};
  std::vector<std::string> expected = {
      "CreateHardwareAec() = HardwareAec#1", "HardwareAec#1.EnableAGC(true)",
      "HardwareAec#1.EnableDenoise(true)", "WavReader#1(noise_in.wav)",
      "WavWriter#1(out.wav, 32000, 1)"};
  Append(expected, block);
  Append(expected, block);
  Append(expected, {"WavReader#1.ReadSamples(441) = 440", "~WavWriter#1", "~WavReader#1"});
  EXPECT_THAT(engine.calls, ElementsAreArray(expected));
  EXPECT_THAT(engine.live, ElementsAre(Pair("HardwareAec", 1)));
}

// As many samples as the module left in the frame.
TEST(TestHardwareAec, WritesWhatTheModuleLeavesInTheFrame) {
  FakeEngine engine;
  engine.wavs["noise_in.wav"] = {16000, 1, Ramp(160)};
  engine.script<AecModuleScript>().capture = [](zuwebrtc::AudioFrame& frame) {
    frame.samples_per_channel_ = 320;
    frame.num_channels_ = 2;
    std::fill_n(frame.data_, 640, static_cast<short>(5));
  };

  TestHardwareAec();

  EXPECT_EQ(engine.wavs["out.wav"].samples, std::vector<short>(640, 5));
  EXPECT_EQ(engine.wavs["out.wav"].rate, 32000);
  EXPECT_EQ(engine.wavs["out.wav"].channels, 1);
}

TEST(TestHardwareAec, StopsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;

  TestHardwareAec();

  EXPECT_THAT(engine.CallsWith("ReadSamples"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("ProcessCapture"), IsEmpty());
}
