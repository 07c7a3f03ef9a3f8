// What an echo-cancellation module keeps, and what it forgets, when its chain starts afresh.

#include <gtest/gtest.h>

#include <vector>

#include "engine_api/aec/software_aec.h"
#include "module_frames.h"

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

}  // namespace
