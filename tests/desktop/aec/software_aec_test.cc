#include "engine_api/aec/software_aec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "engine_api/aec/webrtc_aec.h"
#include "engine_api/common/wav_reader.h"
#include "module_frames.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/talk.h"
#include "support/temporary_directory.h"

namespace {

using zuwebrtc::AudioFrame;

// ERLE of a module in these formats, from 3 s on.
double Erle(AecModule& module, Format farFormat, Format nearFormat, Flags flags = Flags()) {
  const int seconds = 6;
  // The echo of the same talk at both rates: the noise that it is made of is drawn at the far one.
  const Samples far = Talk(farFormat.rate, seconds, 1);
  Samples near = Echo(far, farFormat.rate, 90);
  if (nearFormat.rate != farFormat.rate) {
    Samples resampled;
    const size_t step = static_cast<size_t>(farFormat.rate / nearFormat.rate);
    for (size_t i = 0; i + step <= near.size(); i += step) {
      int sum = 0;
      for (size_t k = 0; k < step; ++k) sum += near[i + k];
      resampled.push_back(static_cast<short>(sum / static_cast<int>(step)));
    }
    near = resampled;
  }
  near = Sum(near, Hiss(nearFormat.rate, seconds, 2, -70));
  const Samples out = Process(module, far, farFormat, near, nearFormat, flags);
  return LossDb(near, Late(out, nearFormat.rate / 100), nearFormat.rate, 3, seconds);
}

TEST(SoftwareAec, CancelsWithTheFlagsInAnyOrder) {
  for (const Flags flags : {Flags{false, false, true}, Flags{true, true, false},
                            Flags{false, false, false}, Flags{true, true, true}}) {
    SoftwareAec module;
    EXPECT_GT(Erle(module, kMono16, kMono16, flags), 30);
  }
}

TEST(SoftwareAec, CancelsInAnyFormatAndHandsBackTheFramesOwn) {
  const struct {
    Format far;
    Format near;
  } cases[] = {{{48000, 2}, {48000, 2}},
               {{8000, 1}, {8000, 1}},
               {{48000, 2}, {8000, 1}},
               {{44100, 1}, {44100, 2}},
               {{32000, 1}, {16000, 2}}};
  for (const auto& one : cases) {
    SoftwareAec module;
    module.SetFsAndCh(16000, 1, APMFSCHSEL);
    EXPECT_GT(Erle(module, one.far, one.near), 18) << one.far.rate << " " << one.near.rate;
  }
}

TEST(SoftwareAec, FollowsAFormatThatChanges) {
  SoftwareAec module;
  EXPECT_GT(Erle(module, kMono16, kMono16), 30);
  EXPECT_GT(Erle(module, {48000, 2}, {48000, 2}), 18);
  EXPECT_GT(Erle(module, kMono16, kMono16), 30);
}

TEST(SoftwareAec, LeavesNearEndSpeechAsItIs) {
  const Samples speech = Talk(16000, 4, 3);
  SoftwareAec module;
  const Samples out = Late(Process(module, Samples(speech.size()), kMono16, speech, kMono16), 112);
  EXPECT_NEAR(LossDb(speech, out, 16000, 0.1, 4), 0, 0.1);
  EXPECT_GT(SdrDb(speech, out, 16000, 0.1, 0), 30);
}

TEST(SoftwareAec, ImprovesDoubleTalk) {
  const Samples far = Talk(16000, 8, 4);
  const Samples speech = Talk(16000, 8, 5);
  const Samples near = Sum(Echo(far, 16000, 90, 0), speech);
  SoftwareAec module;
  const Samples out = Process(module, far, kMono16, near, kMono16);
  EXPECT_GT(SdrDb(speech, out, 16000, 2, 112), SdrDb(speech, near, 16000, 2, 0) + 4);
}

// It is for loudspeakers in the same room, so it suppresses as much as the canceller can.
TEST(SoftwareAec, SuppressesAsMuchAsTheCancellerCan) {
  const Samples far = Talk(16000, 8, 15);
  Samples near = Sum(Echo(far, 16000, 60), Hiss(16000, 8, 16, -65));
  for (short& sample : near) sample = static_cast<short>(std::clamp<int>(sample, -700, 900));
  const auto loss = [&](const Samples& out) { return LossDb(near, Late(out, 112), 16000, 3, 8); };
  double direct[3] = {};
  for (const int mode : {kAecNlpModerate, kAecNlpAggressive}) {
    void* handle = nullptr;
    WebRtcAec_Create(&handle);
    WebRtcAec_Init(handle, 16000, 16000);
    AecConfig config = {};
    config.nlpMode = static_cast<int16_t>(mode);
    WebRtcAec_set_config(handle, config);
    Samples out;
    for (size_t at = 0; at < near.size(); at += 160) {
      const std::vector<float> farBlock(&far[at], &far[at] + 160);
      std::vector<float> block(&near[at], &near[at] + 160);
      float* const place = block.data();
      WebRtcAec_BufferFarend(handle, farBlock.data(), 160);
      WebRtcAec_Process(handle, &place, 1, &place, 160, 60, 0);
      for (const float sample : block) out.push_back(static_cast<short>(sample));
    }
    WebRtcAec_Free(handle);
    direct[mode] = loss(out);
  }
  SoftwareAec module;
  EXPECT_GT(direct[kAecNlpAggressive], direct[kAecNlpModerate] + 1);
  EXPECT_NEAR(loss(Process(module, far, kMono16, near, kMono16)), direct[kAecNlpAggressive], 0.3);
}

TEST(SoftwareAec, CleansWithoutAFarEnd) {
  const Samples speech = Talk(16000, 1, 6);
  SoftwareAec module;
  for (size_t at = 0; at + 160 <= speech.size(); at += 160) {
    AudioFrame frame = Frame(&speech[at], kMono16);
    EXPECT_EQ(module.ProcessCaptureAudio(frame, false, true), 0);
  }
}

TEST(SoftwareAec, TellsVoiceFromSilence) {
  SoftwareAec module;
  EXPECT_TRUE(module.SetVadMode(voiceDetectionModerateLikelihood));
  EXPECT_FALSE(module.SetVadMode(voiceDetectionUnknown));
  const Samples silence(16000);
  for (size_t at = 0; at < silence.size(); at += 160) {
    AudioFrame frame = Frame(&silence[at], kMono16);
    frame.vad_activity_ = zuwebrtc::kVadActive;
    module.ProcessCaptureAudio(frame, false, false);
    EXPECT_EQ(frame.vad_activity_, zuwebrtc::kVadPassive);
  }
}

TEST(SoftwareAec, SuppressesNoiseAndControlsGainOnlyWhenAsked) {
  const Samples noise = Hiss(16000, 6, 7, -40);
  const Samples silence(noise.size());
  double level[3] = {};
  for (const int step : {0, 1, 2}) {
    SoftwareAec module;
    EXPECT_TRUE(module.EnableDenoise(step > 0));
    EXPECT_TRUE(module.SetNewNsOn(step > 1));
    level[step] = LevelDb(Process(module, silence, kMono16, noise, kMono16), 16000, 4, 6);
  }
  EXPECT_NEAR(level[0], -40, 0.5);
  EXPECT_LT(level[1], level[0] - 7);
  EXPECT_LT(level[2], level[1] - 3);

  const Samples quiet = Talk(16000, 6, 8, -45);
  SoftwareAec module;
  EXPECT_TRUE(module.EnableAGC(true));
  EXPECT_GT(LevelDb(Process(module, silence, kMono16, quiet, kMono16), 16000, 4, 6),
            LevelDb(quiet, 16000, 4, 6) + 12);
}

TEST(SoftwareAec, KnowsItsRateAndRefusesOthers) {
  SoftwareAec module;
  unsigned int rate = 0;
  unsigned int channels = 0;
  EXPECT_TRUE(module.GetFsAndCh(rate, channels, APMFSCHSEL));
  EXPECT_EQ(rate, 16000u);
  EXPECT_EQ(channels, 1u);
  {
    CapturedStderr log;
    for (const unsigned int other : {0U, 11025U, 32000U, 44100U, 48000U, 96000U}) {
      EXPECT_FALSE(module.SetFsAndCh(other, 1, APMFSCHSEL)) << other;
    }
    EXPECT_FALSE(module.SetFsAndCh(16000, 2, APMFSCHSEL));
    EXPECT_EQ(log.Lines().size(), 7u);
  }
  EXPECT_TRUE(module.SetFsAndCh(8000, 1, APMFSCHSEL));
  module.GetFsAndCh(rate, channels, APMFSCHSEL);
  EXPECT_EQ(rate, 8000u);
  EXPECT_GT(Erle(module, {8000, 1}, {8000, 1}), 20);
}

TEST(SoftwareAec, LeavesAFrameOfAnUnknownFormatAsItIs) {
  SoftwareAec module;
  AudioFrame frame = Frame(Talk(16000, 0.01, 9).data(), kMono16);
  const AudioFrame before = frame;
  frame.samples_per_channel_ = 320;
  EXPECT_EQ(module.ProcessCaptureAudio(frame, false, true), -1);
  EXPECT_EQ(module.ProcessRenderAudio(frame, false), -1);
  EXPECT_TRUE(std::equal(frame.data_, frame.data_ + 160, before.data_));
  const Samples noise = Hiss(16000, 0.2, 9, -20);
  for (const Format format : {Format{96000, 1}, {7900, 1}, {48000, 3}}) {
    AudioFrame other = Frame(noise.data(), format);
    const AudioFrame same = other;
    EXPECT_EQ(module.ProcessRenderAudio(other, false), -1) << format.rate;
    EXPECT_EQ(module.ProcessCaptureAudio(other, false, true), -1) << format.rate;
    EXPECT_TRUE(std::equal(other.data_, other.data_ + 1440, same.data_)) << format.rate;
  }
  AudioFrame none;
  EXPECT_EQ(module.ProcessCaptureAudio(none, false, true), -1);
}

TEST(SoftwareAec, PassesCaptureUnchangedForKaraoke) {
  const Samples far = Talk(16000, 1, 10);
  SoftwareAec module;
  EXPECT_FALSE(module.IsKalaokEnabled());
  EXPECT_TRUE(module.EnableKalaok(true));
  EXPECT_TRUE(module.IsKalaokEnabled());
  EXPECT_EQ(module.GetKalaokDelay(), 0);
  EXPECT_EQ(Process(module, far, kMono16, far, kMono16), far);
}

TEST(SoftwareAec, LearnsTheEchoPathAnewWhenToldTo) {
  SoftwareAec module;
  EXPECT_GT(Erle(module, kMono16, kMono16), 30);
  module.NotifySpeekerRouting();
  EXPECT_GT(Erle(module, kMono16, kMono16), 30);
  EXPECT_TRUE(module.ResetPreProc(16000));
  {
    CapturedStderr refusal;
    for (const unsigned rate : {0U, 7999U, 48001U, 96000U}) EXPECT_FALSE(module.ResetPreProc(rate));
    EXPECT_EQ(refusal.Lines().size(), 4u);
  }
  EXPECT_GT(Erle(module, kMono16, kMono16), 30);
}

TEST(SoftwareAec, RecordsWhatItGetsAndGives) {
  const TemporaryDirectory directory;
  const CapturedStderr log;
  const Samples far = Talk(16000, 2, 11);
  const Samples near = Talk(16000, 2, 12);
  SoftwareAec module;
  EXPECT_TRUE(module.EnableLogSoftAecData(true, "call"));
  const Samples out = Process(module, far, kMono16, near, kMono16);
  EXPECT_TRUE(module.EnableLogSoftAecData(false, nullptr));
  const auto content = [](const char* name) {
    zuwebrtc::WavReader reader(name);
    Samples samples(reader.num_samples());
    reader.ReadSamples(reader.num_samples(), samples.data());
    return samples;
  };
  EXPECT_EQ(content("call_far.wav"), far);
  EXPECT_EQ(content("call_near.wav"), near);
  EXPECT_EQ(content("call_out.wav"), out);

  // A file has one rate.
  EXPECT_TRUE(module.EnableLogSoftAecData(true, "call"));
  EXPECT_TRUE(module.SetFsAndCh(8000, 1, APMFSCHSEL));
  Process(module, far, kMono16, near, kMono16);
  EXPECT_EQ(ReadFile("call_far.wav").size(), 44u);
}

TEST(SoftwareAec, RepeatsItself) {
  const Samples far = Talk(16000, 2, 13);
  const Samples near = Echo(far, 16000, 50);
  SoftwareAec one;
  SoftwareAec other;
  EXPECT_EQ(Process(one, far, kMono16, near, kMono16), Process(other, far, kMono16, near, kMono16));
  one.NotifySpeekerRouting();  // Another echo path is learnt from here on.
  EXPECT_NE(Process(one, far, kMono16, near, kMono16), Process(other, far, kMono16, near, kMono16));
}

TEST(HardwareAec, IsTheSameChainOnADesktop) {
  const std::unique_ptr<AecModule> module(CreateHardwareAec());
  EXPECT_FALSE(module->IsSoftAecEnabled());
  EXPECT_TRUE(SoftwareAec().IsSoftAecEnabled());
  EXPECT_GT(Erle(*module, kMono16, kMono16), 30);
}

TEST(AecModuleBase, DoesNothingAndSaysTrue) {
  // NOLINTBEGIN(bugprone-parent-virtual-call): what the base does is the question.
  class Other : public SoftwareAec {
   public:
    bool SetFsAndCh(unsigned int rate, unsigned int channels, PlatFormFsChSel select) override {
      return AecModule::SetFsAndCh(rate, channels, select);
    }
    bool EnableAGC(bool on) override { return AecModule::EnableAGC(on); }
    bool EnableDenoise(bool on) override { return AecModule::EnableDenoise(on); }
  };
  // NOLINTEND(bugprone-parent-virtual-call)
  Other module;
  EXPECT_TRUE(module.SetFsAndCh(1, 99, APMFSCHSEL));
  EXPECT_TRUE(module.EnableAGC(true));
  EXPECT_TRUE(module.EnableDenoise(true));
  const Samples noise = Hiss(16000, 3, 14, -40);
  EXPECT_NEAR(LevelDb(Process(module, Samples(noise.size()), kMono16, noise, kMono16), 16000, 2, 3),
              -40, 0.5);
}

}  // namespace
