#include <gmock/gmock.h>

#include "bench/aec/routines.h"
#include "contract/aec/frames.h"
#include "contract/pcm_files.h"
#include "fake_engine/aec/aec_module.h"
#include "fake_engine/effects/audio_resampler_ex.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

TEST(TestZUAec, CancelsWholeBlocksOf16kHzMonoWithoutAConverter) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {16000, 1, Ramp(160 + 160 + 160, 5001)};
  engine.wavs["far.wav"] = {16000, 1, Ramp(160 + 160 + 159)};
  std::vector<short> far;
  engine.script<AecModuleScript>().render = Into(far);
  engine.script<AecModuleScript>().capture = NegateFrame;

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  EXPECT_THAT(engine.calls, Transcript(R"(
      SoftwareAec#1()
      SoftwareAec#1.SetFsAndCh(16000, 1, 0)
      WavReader#1(near.wav)
      WavReader#2(far.wav)
      WavWriter#1(out.wav, 16000, 1)
  )" + Times(2, R"(
      WavReader#1.ReadSamples(160) = 160
      WavReader#2.ReadSamples(160) = 160
      SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)
      SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true)
      WavWriter#1.WriteSamples(160)
  )") + R"(
      WavReader#1.ReadSamples(160) = 160
      WavReader#2.ReadSamples(160) = 159
      IAudioResamplerEx::Destroy(null)
      ~SoftwareAec#1
      ~WavWriter#1
      ~WavReader#2
      ~WavReader#1
  )"));
  EXPECT_EQ(far, Ramp(320));
  EXPECT_EQ(engine.wavs["out.wav"].samples, Negated(Ramp(320, 5001)));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestZUAec, RunsThePlatformsModuleOnRequest) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {16000, 1, Ramp(160)};
  engine.wavs["far.wav"] = {16000, 1, Ramp(160)};

  TestZUAec("near.wav", "far.wav", "out.wav", false);

  EXPECT_THAT(engine.CallsWith("HardwareAec"), Transcript(R"(
      CreateHardwareAec() = HardwareAec#1
      HardwareAec#1.SetFsAndCh(16000, 1, 0)
      HardwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)
      HardwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true)
      ~HardwareAec#1
  )"));
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
  std::vector<short> rendered;
  engine.script<AecModuleScript>().render = Into(rendered);

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  EXPECT_THAT(engine.calls, Transcript(R"(
      SoftwareAec#1()
      SoftwareAec#1.SetFsAndCh(16000, 1, 0)
      WavReader#1(near.wav)
      WavReader#2(far.wav)
      WavWriter#1(out.wav, 16000, 1)
      WavReader#1.ReadSamples(960) = 960
      WavReader#2.ReadSamples(960) = 960
      IAudioResamplerEx::Destroy(null)
      GetPlaceString(TestZUAec, audio_engine/core/audio_tester, 2624)
      IAudioResamplerEx::Create(480, 48000, 2, 160, 16000, 1, the place) = IAudioResamplerEx#1
      IAudioResamplerEx#1.Convert(@1, 960, @1, 160) = 1
      IAudioResamplerEx#1.Convert(@2, 960, @2, 160) = 1
      SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)
      SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(960) = 960
      WavReader#2.ReadSamples(960) = 960
      IAudioResamplerEx#1.IsFormatChange(48000, 2, 16000, 1) = 0
      IAudioResamplerEx#1.Convert(@1, 960, @1, 160) = 1
      IAudioResamplerEx#1.Convert(@2, 960, @2, 160) = 1
      SoftwareAec#1.ProcessRenderAudio(160, 16000 Hz, 1 ch, false)
      SoftwareAec#1.ProcessCaptureAudio(160, 16000 Hz, 1 ch, false, true)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(960) = 0
      IAudioResamplerEx::Destroy(IAudioResamplerEx#1)
      ~IAudioResamplerEx#1
      ~SoftwareAec#1
      ~WavWriter#1
      ~WavReader#2
      ~WavReader#1
  )"));
  EXPECT_EQ(rendered, std::vector<short>(320, 3));
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

  EXPECT_THAT(engine.CallsWith("IAudioResamplerEx::"), Transcript(R"(
      IAudioResamplerEx::Destroy(null)
      IAudioResamplerEx::Create(80, 8000, 1, 160, 16000, 1, the place) = IAudioResamplerEx#1
      IAudioResamplerEx::Destroy(IAudioResamplerEx#1)
      IAudioResamplerEx::Create(80, 8000, 1, 160, 16000, 1, the place) = IAudioResamplerEx#2
      IAudioResamplerEx::Destroy(IAudioResamplerEx#2)
  )"));
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
                Transcript("IAudioResamplerEx#1.Convert(@1, " + count +
                           ", @1, 160) = 1\n"
                           "IAudioResamplerEx#1.Convert(@2, " +
                           count + ", @2, 160) = 1"))
        << rate;
    EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(160));
  }
}

// 10 ms of 768 kHz with nine channels are 69120 samples, of which 16 bits keep 3584.
TEST(TestZUAec, CountsABlockIn16Bits) {
  FakeEngine engine;
  engine.wavs["near.wav"] = {768000, 9, Ramp(3584)};
  engine.wavs["far.wav"] = {768000, 9, Ramp(3584)};

  TestZUAec("near.wav", "far.wav", "out.wav", true);

  EXPECT_THAT(engine.CallsWith(".Convert("), Transcript(R"(
      IAudioResamplerEx#1.Convert(@1, 3584, @1, 160) = 1
      IAudioResamplerEx#1.Convert(@2, 3584, @2, 160) = 1
  )"));
}

TEST(TestZUAec, WritesNothingAndKeepsItsModuleWhenTheFormatsDiffer) {
  for (const FakeWav& far : {FakeWav{16000, 2, {}}, FakeWav{48000, 1, {}}}) {
    for (const bool software : {true, false}) {
      FakeEngine engine;
      engine.wavs["near.wav"] = {48000, 2, Ramp(960)};
      engine.wavs["far.wav"] = {far.rate, far.channels, Ramp(960)};

      TestZUAec("near.wav", "far.wav", "out.wav", software);

      const std::string module = software ? "SoftwareAec" : "HardwareAec";
      EXPECT_THAT(engine.calls, Transcript((software ? "SoftwareAec#1()\n"
                                                     : "CreateHardwareAec() = HardwareAec#1\n") +
                                           module + R"(#1.SetFsAndCh(16000, 1, 0)
          WavReader#1(near.wav)
          WavReader#2(far.wav)
          ~WavReader#2
          ~WavReader#1
      )"));
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
