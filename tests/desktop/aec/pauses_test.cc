// Render and capture that do not go along with each other, and what the gain control makes of echo.

#include <gtest/gtest.h>

#include <algorithm>

#include "engine_api/aec/software_aec.h"
#include "module_frames.h"

namespace {

using zuwebrtc::AudioFrame;

// Render frames that no capture frame follows.
void PlayOn(AecModule& module, const Samples& far) {
  for (size_t at = 0; at + 160 <= far.size(); at += 160) {
    AudioFrame frame = Frame(&far[at], kMono16);
    EXPECT_EQ(module.ProcessRenderAudio(frame, false), 0);
  }
}

// ERLE at 30 ms of echo, after something else was done to the module.
double ErleNearBy(AecModule& module, double from) {
  const Samples far = Talk(16000, 6, 21);
  const Samples near = Sum(Echo(far, 16000, 30), Hiss(16000, 6, 22, -70));
  return LossDb(near, Late(Process(module, far, kMono16, near, kMono16), 112), 16000, from, 6);
}

TEST(SoftwareAec, KeepsTheEndsTogetherWhenCaptureStartsLate) {
  SoftwareAec module;
  const double both = ErleNearBy(module, 3);
  for (const double seconds : {0.05, 0.2}) {
    SoftwareAec late;
    PlayOn(late, Talk(16000, seconds, 23));
    EXPECT_GT(ErleNearBy(late, 3), both - 3) << seconds;
  }
}

TEST(SoftwareAec, KeepsTheEndsTogetherWhenCapturePauses) {
  for (const double seconds : {0.05, 0.2, 3.0}) {
    SoftwareAec module;
    ErleNearBy(module, 3);
    PlayOn(module, Talk(16000, seconds, 24));
    EXPECT_GT(ErleNearBy(module, 2), 30) << seconds;
  }
}

TEST(SoftwareAec, KeepsTheEndsTogetherWhileBypassed) {
  SoftwareAec module;
  ErleNearBy(module, 3);
  module.EnableKalaok(true);
  ErleNearBy(module, 3);
  module.EnableKalaok(false);
  EXPECT_GT(ErleNearBy(module, 0.2), 25);
}

// Devices may hand over 80 ms of one end and then as much of the other.
TEST(SoftwareAec, KeepsEarlyFramesOfTheFarEnd) {
  const Samples far = Talk(16000, 3.2, 27);
  const Samples near = Sum(Echo(far, 16000, 90), Talk(16000, 3.2, 28, -30));
  SoftwareAec paired;
  const Samples expected = Process(paired, far, kMono16, near, kMono16);
  for (const size_t early : {size_t{640}, size_t{1280}}) {
    SoftwareAec module;
    Samples out;
    for (size_t at = 0; at + early <= far.size(); at += early) {
      PlayOn(module, Samples(far.begin() + static_cast<ptrdiff_t>(at),
                             far.begin() + static_cast<ptrdiff_t>(at + early)));
      for (size_t block = at; block < at + early; block += 160) {
        AudioFrame frame = Frame(&near[block], kMono16);
        EXPECT_EQ(module.ProcessCaptureAudio(frame, false, true), 0);
        out.insert(out.end(), frame.data_, frame.data_ + 160);
      }
    }
    EXPECT_EQ(out, expected) << early;
  }
}

// A loudspeaker beside the microphone, and one that is driven too hard as well: the canceller
// cannot take all of its echo.
TEST(SoftwareAec, DoesNotLearnTheGainFromEcho) {
  const Samples far = Talk(16000, 8, 25);
  for (const int limit : {32767, 700}) {
    Samples echo = Echo(far, 16000, 60, 6);
    for (short& sample : echo) sample = static_cast<short>(std::clamp<int>(sample, -limit, limit));
    const Samples near = Sum(echo, Hiss(16000, 8, 26, -75));
    double loss[2] = {};
    for (const bool gain : {false, true}) {
      SoftwareAec module;
      module.EnableAGC(gain);
      const Samples out = Late(Process(module, far, kMono16, near, kMono16), 112);
      loss[gain ? 1 : 0] = LossDb(near, out, 16000, 3, 8);
    }
    EXPECT_GT(loss[1], loss[0] - 3) << limit;
  }
}

}  // namespace
