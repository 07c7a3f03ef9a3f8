// What an echo-cancellation module keeps, and what it forgets, when its chain starts afresh.

#include <gtest/gtest.h>

#include <vector>

#include "engine_api/aec/software_aec.h"
#include "engine_api/common/wav_reader.h"
#include "module_frames.h"
#include "support/captured_stderr.h"
#include "support/temporary_directory.h"

namespace {

using zuwebrtc::AudioFrame;

constexpr Format kMono8 = {8000, 1};

std::vector<int> Activity(AecModule& module, const Samples& near) {
  std::vector<int> activity;
  for (size_t at = 0; at + 160 <= near.size(); at += 160) {
    AudioFrame frame = Frame(&near[at], kMono16);
    EXPECT_EQ(module.ProcessCaptureAudio(frame, false, true), 0);
    activity.push_back(frame.vad_activity_);
  }
  return activity;
}

TEST(SoftwareAec, KeepsTheVoiceModeOverAChangeOfRate) {
  const Samples near = Sum(Talk(16000, 3, 31, -40), Hiss(16000, 3, 32, -45));
  SoftwareAec before;
  EXPECT_TRUE(before.SetVadMode(voiceDetectionHighLikelihood));
  EXPECT_TRUE(before.SetFsAndCh(16000, 1, APMFSCHSEL));
  SoftwareAec after;
  EXPECT_TRUE(after.SetFsAndCh(16000, 1, APMFSCHSEL));
  EXPECT_TRUE(after.SetVadMode(voiceDetectionHighLikelihood));
  SoftwareAec never;
  const std::vector<int> activity = Activity(before, near);
  EXPECT_EQ(activity, Activity(after, near));
  EXPECT_NE(activity, Activity(never, near));
}

TEST(SoftwareAec, ControlsTheGainAtTheNewRate) {
  const Samples near = Talk(8000, 4, 33, -45);
  const Samples silence(near.size());
  SoftwareAec before;
  before.EnableAGC(true);
  EXPECT_TRUE(before.SetFsAndCh(8000, 1, APMFSCHSEL));
  SoftwareAec after;
  EXPECT_TRUE(after.SetFsAndCh(8000, 1, APMFSCHSEL));
  after.EnableAGC(true);
  EXPECT_EQ(Process(before, silence, kMono8, near, kMono8),
            Process(after, silence, kMono8, near, kMono8));
}

TEST(SoftwareAec, StartsAfreshWhenItIsReset) {
  const Samples far = Talk(16000, 2, 34);
  const Samples near = Echo(far, 16000, 50);
  SoftwareAec module;
  module.EnableAGC(true);
  const Samples first = Process(module, far, kMono16, near, kMono16);
  EXPECT_NE(Process(module, far, kMono16, near, kMono16), first);
  EXPECT_TRUE(module.ResetPreProc(16000));
  EXPECT_EQ(Process(module, far, kMono16, near, kMono16), first);
}

TEST(SoftwareAec, DenoisesAtTheNewRateAsBefore) {
  const Samples noise = Hiss(8000, 6, 35, -40);
  double level[3] = {};
  for (const int step : {0, 1, 2}) {
    SoftwareAec module;
    EXPECT_TRUE(module.EnableDenoise(step > 0));
    EXPECT_TRUE(module.SetNewNsOn(step > 1));
    EXPECT_TRUE(module.SetFsAndCh(8000, 1, APMFSCHSEL));
    const Samples out = Process(module, Samples(noise.size()), kMono8, noise, kMono8);
    level[step] = LevelDb(out, 8000, 4, 6);
  }
  EXPECT_NEAR(level[0], -40, 0.5);
  EXPECT_LT(level[1], level[0] - 7);
  EXPECT_LT(level[2], level[1] - 3);
}

TEST(SoftwareAec, RecordsOnWhenItIsReset) {
  const TemporaryDirectory directory;
  const CapturedStderr log;
  const Samples far = Talk(16000, 1, 36);
  SoftwareAec module;
  EXPECT_TRUE(module.EnableLogSoftAecData(true, "call"));
  Process(module, far, kMono16, far, kMono16);
  EXPECT_TRUE(module.ResetPreProc(16000));
  EXPECT_TRUE(module.SetFsAndCh(16000, 1, APMFSCHSEL));
  Process(module, far, kMono16, far, kMono16);
  EXPECT_TRUE(module.EnableLogSoftAecData(false, nullptr));
  zuwebrtc::WavReader reader("call_far.wav");
  EXPECT_EQ(reader.num_samples(), 2 * far.size());
}

}  // namespace
