// The modules on files whose names are fixed.

#include <gmock/gmock.h>

#include <map>

#include "bench/aec/routines.h"
#include "contract/aec/frames.h"
#include "contract/pcm_files.h"
#include "fake_engine/aec/aec_module.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

// What the first run in this process does differs from the others, so it is kept for the tests.
class TestSoftAecRoutine : public testing::Test {
 protected:
  struct Run {
    std::vector<std::string> calls;
    std::map<std::string, int> live;
    std::vector<short> far;
    std::vector<short> out;
    bool hasMetrics = false;
    std::string metrics;
  };

  static void SetUpTestSuite() {
    if (!first.calls.empty()) return;  // The tests are repeated.
    FakeEngine engine;
    engine.wavs["music_delay/findcap.wav"] = {48000, 2, std::vector<short>(960 + 959, 7)};
    engine.wavs["music_delay/findreceive.wav"] = {8000, 1, std::vector<short>(80 + 80, 3)};
    std::vector<short> far;
    engine.script<AecModuleScript>().render = Into(far);
    engine.script<AecModuleScript>().capture = NegateFrame;
    TestSoftAec();
    first = {engine.calls,
             engine.live,
             far,
             engine.wavs["music_delay/out.wav"].samples,
             engine.HasFile("music_delay/echo_metrics.txt"),
             engine.Bytes("music_delay/echo_metrics.txt")};
  }

  static Run first;
};

TestSoftAecRoutine::Run TestSoftAecRoutine::first;

TEST_F(TestSoftAecRoutine, GivesTheModuleEachFrameInItsOwnFormat) {
  EXPECT_THAT(first.calls, Transcript(R"(
      fopen(music_delay/echo_metrics.txt, wb)
      SoftwareAec#1()
      SoftwareAec#1.SetFsAndCh(16000, 1, 0)
      WavReader#1(music_delay/findcap.wav)
      WavReader#2(music_delay/findreceive.wav)
      WavWriter#1(music_delay/out.wav, 16000, 1)
      WavReader#1.ReadSamples(960) = 960
      WavReader#2.ReadSamples(80) = 80
      SoftwareAec#1.ProcessRenderAudio(80, 8000 Hz, 1 ch, true)
      SoftwareAec#1.ProcessCaptureAudio(480, 48000 Hz, 2 ch, true, false)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(960) = 959
      ~SoftwareAec#1
      fclose(music_delay/echo_metrics.txt)
      ~WavWriter#1
      ~WavReader#2
      ~WavReader#1
  )"));
  EXPECT_EQ(first.far, std::vector<short>(80, 3));
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

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateHardwareAec() = HardwareAec#1
      HardwareAec#1.EnableAGC(true)
      HardwareAec#1.EnableDenoise(true)
      WavReader#1(noise_in.wav)
      WavWriter#1(out.wav, 32000, 1)
  )" + Times(2, R"(
      WavReader#1.ReadSamples(441) = 441
      HardwareAec#1.ProcessCaptureAudio(220, 22050 Hz, 2 ch, false, true)
      WavWriter#1.WriteSamples(440)
  )") + R"(
      WavReader#1.ReadSamples(441) = 440  # Dropped.
      ~WavWriter#1
      ~WavReader#1
  )"));
  std::vector<short> written = Negated(Ramp(440));
  const std::vector<short> second = Negated(Ramp(440, 442));
  written.insert(written.end(), second.begin(), second.end());
  EXPECT_EQ(engine.wavs["out.wav"].samples, written);
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
