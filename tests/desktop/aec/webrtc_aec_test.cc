#include "engine_api/aec/webrtc_aec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

#include "support/captured_stderr.h"
#include "support/talk.h"

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = 160;
constexpr int kLag = 112;

class WebRtcAec : public testing::Test {
 protected:
  WebRtcAec() {
    EXPECT_EQ(WebRtcAec_Create(&m_handle), 0);
    EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
  }
  ~WebRtcAec() override { EXPECT_EQ(WebRtcAec_Free(m_handle), 0); }

  // Floats as they come out, less the lag.
  std::vector<float> Run(const Samples& far, const Samples& near, int16_t delay, int32_t skew = 0) {
    std::vector<float> out(near.size());
    std::vector<float> farBlock(kBlock);
    std::vector<float> nearBlock(kBlock);
    for (size_t at = 0; at + kBlock <= near.size(); at += kBlock) {
      std::copy_n(&far[at], kBlock, farBlock.begin());
      std::copy_n(&near[at], kBlock, nearBlock.begin());
      EXPECT_EQ(WebRtcAec_BufferFarend(m_handle, farBlock.data(), kBlock), 0);
      const float* const in = nearBlock.data();
      float* const result = &out[at];
      EXPECT_EQ(WebRtcAec_Process(m_handle, &in, 1, &result, kBlock, delay, skew), 0);
    }
    return out;
  }

  // With the lag taken away.
  Samples RunShorts(const Samples& far, const Samples& near, int16_t delay, int32_t skew = 0) {
    const std::vector<float> out = Run(far, near, delay, skew);
    Samples shorts(out.size() - kLag);
    std::transform(out.begin() + kLag, out.end(), shorts.begin(),
                   [](float sample) { return static_cast<short>(sample); });
    return shorts;
  }

  void SetNlp(int16_t mode) {
    AecConfig config = {};
    config.nlpMode = mode;
    EXPECT_EQ(WebRtcAec_set_config(m_handle, config), 0);
  }

  void* m_handle = nullptr;
};

TEST_F(WebRtcAec, CancelsEcho) {
  const Samples far = Talk(kRate, 8, 1);
  const Samples near = Sum(Echo(far, kRate, 89), Hiss(kRate, 8, 2, -65));
  SetNlp(kAecNlpAggressive);
  EXPECT_GT(LossDb(near, RunShorts(far, near, 89), kRate, 3, 8), 30);
}

TEST_F(WebRtcAec, CancelsEchoWithADelayThatIsWrong) {
  const Samples far = Talk(kRate, 8, 3);
  const Samples near = Sum(Echo(far, kRate, 89), Hiss(kRate, 8, 4, -65));
  SetNlp(kAecNlpAggressive);
  for (const int16_t delay : {int16_t{0}, int16_t{150}}) {
    EXPECT_GT(LossDb(near, RunShorts(far, near, delay), kRate, 4, 8), 20) << delay;
  }
}

TEST_F(WebRtcAec, SuppressesMoreWhenAskedTo) {
  const Samples far = Talk(kRate, 8, 5);
  Samples near = Sum(Echo(far, kRate, 60), Hiss(kRate, 8, 6, -65));
  for (short& sample : near) {  // A loudspeaker that is driven too hard.
    sample = static_cast<short>(std::clamp<int>(sample, -700, 900));
  }
  double loss[3] = {};
  for (const int mode : {kAecNlpConservative, kAecNlpModerate, kAecNlpAggressive}) {
    EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
    SetNlp(static_cast<int16_t>(mode));
    loss[mode] = LossDb(near, RunShorts(far, near, 60), kRate, 3, 8);
  }
  EXPECT_LT(loss[kAecNlpConservative] + 1, loss[kAecNlpModerate]);
  EXPECT_LT(loss[kAecNlpModerate] + 1, loss[kAecNlpAggressive]);
  EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
  EXPECT_EQ(LossDb(near, RunShorts(far, near, 60), kRate, 3, 8), loss[kAecNlpModerate]);
}

TEST_F(WebRtcAec, LeavesNearEndSpeechAsItIs) {
  const Samples speech = Talk(kRate, 4, 7);
  const Samples out = RunShorts(Samples(speech.size()), speech, 0);
  EXPECT_NEAR(LossDb(speech, out, kRate, 0.1, 4), 0, 0.1);
  EXPECT_GT(SdrDb(speech, out, kRate, 0.1, 0), 30);
}

TEST_F(WebRtcAec, ImprovesDoubleTalk) {
  const Samples far = Talk(kRate, 8, 8);
  const Samples speech = Talk(kRate, 8, 9);
  const Samples near = Sum(Echo(far, kRate, 50, 0), speech);
  SetNlp(kAecNlpAggressive);
  EXPECT_GT(SdrDb(speech, RunShorts(far, near, 50), kRate, 2, 0),
            SdrDb(speech, near, kRate, 2, 0) + 4);
}

// Echo with hiss, `delay` ms late.
Samples Noisy(const Samples& far, int delay) {
  return Sum(Echo(far, kRate, delay), Hiss(kRate, 8, 14, -70));
}

TEST_F(WebRtcAec, FollowsADelayThatBecomesShort) {
  const Samples far = Talk(kRate, 8, 13);
  const double at5 = LossDb(Noisy(far, 5), RunShorts(far, Noisy(far, 5), 5), kRate, 3, 8);
  EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
  RunShorts(far, Noisy(far, 250), 250);
  EXPECT_GT(LossDb(Noisy(far, 5), RunShorts(far, Noisy(far, 5), 5), kRate, 3, 8), at5 - 3);
}

// Where somebody talks at the near end, only a filter that reaches the echo takes it.
TEST_F(WebRtcAec, FollowsADelayThatChangesInDoubleTalk) {
  const Samples far = Talk(kRate, 8, 13);
  const Samples speech = Talk(kRate, 8, 17);
  const auto talking = [&](int delay) { return Sum(Echo(far, kRate, delay, 0), speech); };
  for (const auto& [before, after] : {std::pair<int16_t, int16_t>{5, 340}, {250, 160}}) {
    EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
    RunShorts(far, talking(before), before);
    const Samples near = talking(after);
    const Samples out = RunShorts(far, near, after);
    EXPECT_GT(SdrDb(speech, out, kRate, 3, 0), SdrDb(speech, near, kRate, 3, 0) + 6) << after;
  }
}

// What devices say wavers by some milliseconds, and of a change that is none the path is not learnt
// anew.
TEST_F(WebRtcAec, IgnoresADelayThatDoesNotLastAndOneThatHardlyChanges) {
  const Samples far = Talk(kRate, 8, 15);
  const auto part = [](const Samples& all, size_t begin, size_t end) {
    return Samples(all.begin() + static_cast<ptrdiff_t>(begin * kBlock),
                   all.begin() + static_cast<ptrdiff_t>(end * kBlock));
  };
  struct Told {
    int16_t usual;
    int16_t other;
    size_t blocks;
  };
  for (const Told& told : {Told{5, 300, 1}, {55, 62, 300}, {62, 55, 300}}) {
    const Samples near = Noisy(far, told.usual);
    EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
    const std::vector<float> steady = Run(far, near, told.usual);
    EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
    std::vector<float> out;
    const size_t back = 200 + told.blocks;
    for (const auto& [begin, end, delay] : {std::tuple<size_t, size_t, int16_t>{0, 200, told.usual},
                                            {200, back, told.other},
                                            {back, 800, told.usual}}) {
      const std::vector<float> some = Run(part(far, begin, end), part(near, begin, end), delay);
      out.insert(out.end(), some.begin(), some.end());
    }
    EXPECT_EQ(out, steady) << told.other;
  }
}

TEST_F(WebRtcAec, StaysWithin16BitsAndTakesAnyDelayWithoutALine) {
  Samples far = Hiss(kRate, 3, 10, -3);
  Samples near(far.size());
  for (size_t i = 800; i < near.size(); ++i) near[i] = far[i - 800] < 0 ? -32768 : 32767;
  for (const int16_t delay : {int16_t{-25536}, int16_t{-1}, int16_t{501}, int16_t{32767}}) {
    CapturedStderr log;
    for (const float sample : Run(far, near, delay)) {
      ASSERT_GE(sample, -32768.0f);
      ASSERT_LE(sample, 32767.0f);
    }
    EXPECT_EQ(log.Text(), "");
  }
}

TEST_F(WebRtcAec, ClampsTheDelay) {
  const Samples far = Talk(kRate, 3, 16);
  const Samples near = Echo(far, kRate, 470);
  const auto at = [&](int16_t delay) {
    EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
    return Run(far, near, delay);
  };
  EXPECT_EQ(at(32767), at(500));
  EXPECT_EQ(at(-25536), at(0));
}

TEST_F(WebRtcAec, IgnoresSkewAndRepeatsItself) {
  const Samples far = Talk(kRate, 2, 11);
  const Samples near = Echo(far, kRate, 40);
  const std::vector<float> once = Run(far, near, 40);
  EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, kRate), 0);
  EXPECT_EQ(Run(far, near, 40, 77), once);
}

TEST_F(WebRtcAec, WorksInPlace) {
  const Samples far = Talk(kRate, 1, 12);
  std::vector<float> block(far.begin(), far.begin() + kBlock);
  float* const place = block.data();
  EXPECT_EQ(WebRtcAec_Process(m_handle, &place, 1, &place, kBlock, 0, 0), 0);
}

TEST_F(WebRtcAec, RefusesWhatIsNotAsSaid) {
  std::vector<float> block(kBlock);
  float* const place = block.data();
  EXPECT_EQ(WebRtcAec_BufferFarend(m_handle, place, 80), -1);
  EXPECT_EQ(WebRtcAec_BufferFarend(m_handle, nullptr, kBlock), -1);
  EXPECT_EQ(WebRtcAec_Process(m_handle, &place, 2, &place, kBlock, 0, 0), -1);
  EXPECT_EQ(WebRtcAec_Process(m_handle, &place, 1, &place, 80, 0, 0), -1);
  AecConfig config = {};
  CapturedStderr log;
  for (const int16_t mode : {int16_t{-1}, int16_t{3}}) {
    config.nlpMode = mode;
    EXPECT_EQ(WebRtcAec_set_config(m_handle, config), -1);
  }
  EXPECT_EQ(WebRtcAec_Init(m_handle, 48000, 48000), -1);
  EXPECT_EQ(WebRtcAec_Init(m_handle, kRate, 48000), -1);
  EXPECT_EQ(log.Lines().size(), 4u);
}

TEST(WebRtcAecHandle, GivesMinus1WhenNullOrNotInitialised) {
  std::vector<float> block(kBlock);
  float* const place = block.data();
  void* handle = nullptr;
  EXPECT_EQ(WebRtcAec_Create(nullptr), -1);
  EXPECT_EQ(WebRtcAec_Create(&handle), 0);
  for (void* const unusable : {static_cast<void*>(nullptr), handle}) {
    EXPECT_EQ(WebRtcAec_set_config(unusable, AecConfig()), -1);
    EXPECT_EQ(WebRtcAec_BufferFarend(unusable, place, kBlock), -1);
    EXPECT_EQ(WebRtcAec_Process(unusable, &place, 1, &place, kBlock, 0, 0), -1);
  }
  EXPECT_EQ(WebRtcAec_Init(nullptr, kRate, kRate), -1);
  EXPECT_EQ(WebRtcAec_Free(nullptr), -1);
  EXPECT_EQ(WebRtcAec_Free(handle), 0);
}

}  // namespace
