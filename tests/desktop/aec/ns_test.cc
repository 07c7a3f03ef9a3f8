#include "engine_api/aec/ns.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "support/captured_stderr.h"
#include "support/talk.h"

namespace {

Samples Clean(const Samples& in, unsigned rate, int16_t channels, std::optional<int> policy) {
  void* handle = nullptr;
  EXPECT_EQ(Ns_Create(&handle), 0);
  EXPECT_EQ(Ns_Init(handle, rate), 0);
  if (policy) {
    EXPECT_EQ(Ns_set_policy(handle, *policy), 0);
  }
  const size_t block = rate * static_cast<unsigned>(channels) / 100;
  Samples out(in.size());
  for (size_t at = 0; at + block <= in.size(); at += block) {
    EXPECT_EQ(Ns_Process2(handle, &in[at], &out[at], channels), 0);
  }
  EXPECT_EQ(Ns_Free(handle), 0);
  return out;
}

TEST(Ns, TakesNoiseAwayByPolicyAtEveryRate) {
  for (const unsigned rate : {8000u, 11025u, 16000u, 32000u, 44100u, 48000u}) {
    const Samples noise = Hiss(static_cast<int>(rate), 5, 1, -35);
    const double before = LevelDb(noise, static_cast<int>(rate), 3, 5);
    double reduction[3] = {};
    for (const int policy : {0, 1, 2}) {
      const Samples out = Clean(noise, rate, 1, policy);
      reduction[policy] = before - LevelDb(out, static_cast<int>(rate), 3, 4.9);
    }
    EXPECT_GT(reduction[0], 4) << rate;
    EXPECT_GT(reduction[1], reduction[0] + 2) << rate;
    EXPECT_GT(reduction[2], 15) << rate;
  }
}

TEST(Ns, IsOfTheMildestPolicyUntilItIsToldOne) {
  const Samples noise = Hiss(16000, 1, 1, -35);
  EXPECT_EQ(Clean(noise, 16000, 1, {}), Clean(noise, 16000, 1, 0));
  EXPECT_NE(Clean(noise, 16000, 1, {}), Clean(noise, 16000, 1, 1));
}

TEST(Ns, KeepsSpeech) {
  const Samples speech = Talk(16000, 5, 2);
  const Samples noisy = Sum(speech, Hiss(16000, 5, 3, -55));
  const Samples out = Clean(noisy, 16000, 1, 2);
  const Lag lag = FindLag(speech, out, 300);
  EXPECT_EQ(lag.samples, 96);
  EXPECT_GT(lag.agreement, 0.98);
}

TEST(Ns, CleansChannelsByThemselvesAndExactlyOneBlock) {
  const int rate = 44100;
  const Samples noise = Hiss(rate, 4, 4, -35);
  Samples stereo;
  for (const short sample : noise) stereo.insert(stereo.end(), {sample, 0});
  const Samples out = Clean(stereo, rate, 2, 2);
  const Samples mono = Clean(noise, rate, 1, 2);
  for (size_t i = 0; i < noise.size() / 441 * 441; ++i) {
    ASSERT_EQ(out[2 * i], mono[i]);
    ASSERT_EQ(out[2 * i + 1], 0);
  }

  void* handle = nullptr;
  Ns_Create(&handle);
  Ns_Init(handle, 44100);
  const Samples in(882, 1000);
  Samples room(884, 77);
  Ns_Process2(handle, in.data(), room.data(), 2);
  EXPECT_EQ(in, Samples(882, 1000));
  EXPECT_NE(room[881], 77);
  EXPECT_EQ(room[882], 77);
  Ns_Free(handle);
}

// 22050 Hz stereo: 441 samples, which are no whole number of frames.
TEST(Ns, KeepsChannelsInPlaceOverBlocksOfAnOddLength) {
  const Samples noise = Hiss(22050, 10, 5, -30);
  Samples stereo;
  for (const short sample : noise) stereo.insert(stereo.end(), {sample, 0});
  const Samples out = Clean(stereo, 22050, 2, 1);
  for (size_t i = 1; i < out.size(); i += 2) ASSERT_EQ(out[i], 0) << i;
  EXPECT_GT(LevelDb(out, 44100, 5, 9.9), -50);
}

TEST(Ns, StartsAfreshWhenItIsInitialised) {
  const Samples noise = Hiss(22050, 2, 6, -30);
  void* handle = nullptr;
  EXPECT_EQ(Ns_Create(&handle), 0);
  Samples runs[2];
  for (Samples& out : runs) {
    EXPECT_EQ(Ns_Init(handle, 22050), 0);
    out.resize(noise.size());
    for (size_t at = 0; at + 441 <= noise.size(); at += 441) {
      EXPECT_EQ(Ns_Process2(handle, &noise[at], &out[at], 2), 0);
    }
    EXPECT_EQ(Ns_set_policy(handle, 2), 0);
  }
  EXPECT_EQ(runs[1], runs[0]);
  EXPECT_EQ(Ns_Free(handle), 0);
}

// What waited for the rest of its frame, and what waited to be handed out, belong to the channels
// before.
TEST(Ns, ForgetsWhatWaitsWhenTheChannelsChange) {
  Samples in(11000);
  const Samples speech = Talk(22050, 1, 7);
  in.insert(in.end(), speech.begin(), speech.end());
  int lags[2] = {};
  for (const bool changes : {false, true}) {
    void* handle = nullptr;
    Ns_Create(&handle);
    Ns_Init(handle, 22050);
    const Samples loud = Hiss(22050, 2, 8, -10);
    for (size_t at = 0; changes && at < size_t{100} * 441; at += 441) {
      Samples out(441);
      EXPECT_EQ(Ns_Process2(handle, &loud[at], out.data(), 2), 0);
    }
    Samples out(in.size());
    for (size_t at = 0; at + 220 <= in.size(); at += 220) {
      EXPECT_EQ(Ns_Process2(handle, &in[at], &out[at], 1), 0);
    }
    Ns_Free(handle);
    // The first two blocks may hold the end of the sound before.
    EXPECT_LT(LevelDb(out, 22000, 0.02, 0.5), -80);
    lags[changes ? 1 : 0] = FindLag(in, out, 500).samples;
  }
  EXPECT_EQ(lags[1], lags[0]);
}

TEST(Ns, RefusesWhatIsNotAsSaid) {
  void* handle = nullptr;
  short block[480] = {};
  EXPECT_EQ(Ns_Create(nullptr), -1);
  EXPECT_EQ(Ns_Create(&handle), 0);
  EXPECT_EQ(Ns_Process2(handle, block, block, 1), -1);
  EXPECT_EQ(Ns_set_policy(handle, 1), -1);
  {
    CapturedStderr log;
    EXPECT_EQ(Ns_Init(handle, 7999), -1);
    EXPECT_EQ(Ns_Init(handle, 48001), -1);
    EXPECT_EQ(log.Lines().size(), 2u);
  }
  EXPECT_EQ(Ns_Init(handle, 16000), 0);
  {
    CapturedStderr log;
    EXPECT_EQ(Ns_set_policy(handle, 3), -1);
    EXPECT_EQ(Ns_set_policy(handle, -1), -1);
    EXPECT_EQ(log.Lines().size(), 2u);
  }
  EXPECT_EQ(Ns_set_policy(nullptr, 1), -1);
  EXPECT_EQ(Ns_Process2(handle, nullptr, block, 1), -1);
  EXPECT_EQ(Ns_Process2(handle, block, nullptr, 1), -1);
  EXPECT_EQ(Ns_Process2(handle, block, block, 0), -1);
  EXPECT_EQ(Ns_Process2(handle, block, block, 3), -1);
  EXPECT_EQ(Ns_Process2(nullptr, block, block, 1), -1);
  EXPECT_EQ(Ns_Init(nullptr, 16000), -1);
  EXPECT_EQ(Ns_Free(nullptr), -1);
  EXPECT_EQ(Ns_Free(handle), 0);
}

}  // namespace
