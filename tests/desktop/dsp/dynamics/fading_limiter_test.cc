#include "desktop/dsp/dynamics/fading_limiter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/signals.h"

namespace {

using Floats = std::vector<float>;

constexpr int kRate = 16000;

// A limiter that changes nothing below full scale.
constexpr LimiterParameter kOpen = {.fCeiling = 0,
                                    .fThreshold = 0,
                                    .fPreGain = 0,
                                    .fRelease = 90,
                                    .fAttack = 0,
                                    .fLookahead = 0,
                                    .fLookaheadRatio = 0,
                                    .fRMS = 0,
                                    .fFactor = 0,
                                    .fStLink = 1,
                                    .fType = 0};

Floats Processed(desktop::FadingLimiter& limiter, Floats samples) {
  float* const row = samples.data();
  limiter.Process(&row, 1, samples.size(), kRate);
  return samples;
}

TEST(FadingLimiter, FadesIntoAnotherGainFor20Milliseconds) {
  desktop::FadingLimiter limiter;
  limiter.SetEnabled(true);
  limiter.SetParameter(kOpen);
  EXPECT_EQ(Processed(limiter, Floats(1600, 0.125F)), Floats(1600, 0.125F));
  LimiterParameter louder = kOpen;
  louder.fPreGain = 20 * std::log10(2.0F);
  limiter.SetParameter(louder);
  const Floats fade = Processed(limiter, Floats(1600, 0.125F));
  for (const int ms : {0, 5, 10, 15, 20, 50}) {
    const double share = ms < 20 ? 0.5 - 0.5 * std::cos(M_PI * ms / 20) : 1;
    EXPECT_NEAR(fade[static_cast<size_t>(16 * ms)], 0.125 * (1 + share), 1e-3) << ms;
  }
}

TEST(FadingLimiter, StartsAfreshAtAnotherRate) {
  LimiterParameter low = kOpen;
  low.fThreshold = low.fCeiling = -20;
  low.fLookahead = 5;
  desktop::FadingLimiter changed;
  desktop::FadingLimiter fresh;
  for (desktop::FadingLimiter* const limiter : {&changed, &fresh}) {
    limiter->SetEnabled(true);
    limiter->SetParameter(low);
  }
  Processed(changed, Floats(1600, 0.9F));
  Floats out[2] = {Floats(4800, 0.05F), Floats(4800, 0.05F)};
  float* const rows[] = {out[0].data(), out[1].data()};
  changed.Process(&rows[0], 1, 4800, 48000);
  fresh.Process(&rows[1], 1, 4800, 48000);
  EXPECT_EQ(out[0], out[1]);
}

// The longest look-ahead is as long as the fade. A tone of whole periods meets itself there.
TEST(FadingLimiter, HasHeardWhatALookAheadHolds) {
  Floats tone(4800);
  for (size_t i = 0; i < tone.size(); ++i) {
    tone[i] = static_cast<float>(0.5 * std::sin(2 * M_PI * 1000 * static_cast<double>(i) / kRate));
  }
  desktop::FadingLimiter limiter;
  Processed(limiter, tone);
  LimiterParameter ahead = kOpen;
  ahead.fLookahead = 20;
  limiter.SetEnabled(true);
  limiter.SetParameter(ahead);
  const Floats out = Processed(limiter, tone);
  for (size_t i = 0; i < out.size(); ++i) ASSERT_NEAR(out[i], tone[i], 1e-4) << i;
}

// A loud sound that ended a moment ago still holds the gain of the limiter that comes.
TEST(FadingLimiter, HasHeardTheSoundBefore) {
  LimiterParameter low = kOpen;
  low.fThreshold = low.fCeiling = -20;
  desktop::FadingLimiter limiter;
  Floats burst(1600, 0.01F);
  std::fill(burst.begin() + 800, burst.begin() + 1400, 0.9F);
  Processed(limiter, burst);
  limiter.SetEnabled(true);
  limiter.SetParameter(low);
  // 12.5 ms after the burst, and 20 ms of fade.
  const Floats out = Processed(limiter, Floats(640, 0.01F));
  EXPECT_LT(out[340], 0.005F);
}

// What is left, 25 ms after the limiter was switched on, of a level that one peak so long before
// would keep at a tenth.
float LeftAfterAPeak(size_t milliseconds) {
  LimiterParameter low = kOpen;
  low.fThreshold = low.fCeiling = -20;
  low.fRelease = 5000;
  desktop::FadingLimiter limiter;
  Floats before(1600, 0.05F);
  before[before.size() - 16 * milliseconds] = 1;
  Processed(limiter, before);
  limiter.SetEnabled(true);
  limiter.SetParameter(low);
  return Processed(limiter, Floats(640, 0.05F))[400] / 0.05F;
}

TEST(FadingLimiter, HasHeardTheLast40Milliseconds) {
  EXPECT_NEAR(LeftAfterAPeak(38), 0.11F, 0.01F);
  EXPECT_FLOAT_EQ(LeftAfterAPeak(50), 1);
}

// Two channels of noise that comes and goes, one louder than the other.
std::vector<Floats> AfterAChange(const LimiterParameter& first, const LimiterParameter& then) {
  desktop::FadingLimiter limiter;
  limiter.SetEnabled(true);
  std::vector<Floats> rows;
  for (const double peak : {0.9, 0.3}) {
    const std::vector<double> noise = BurstNoise(kRate, peak, kRate, 1);
    rows.emplace_back(noise.begin(), noise.end());
  }
  for (size_t at = 0; at < rows[0].size(); at += 160) {
    limiter.SetParameter(at < rows[0].size() / 4 ? first : then);
    float* const pointers[] = {&rows[0][at], &rows[1][at]};
    limiter.Process(pointers, 2, 160, kRate);
  }
  return rows;
}

TEST(FadingLimiter, TakesAChangeOfEachSetting) {
  LimiterParameter base = kOpen;
  base.fThreshold = -20;
  base.fCeiling = -6;
  base.fLookahead = 5;
  for (const auto& [field, value] : std::vector<std::pair<float LimiterParameter::*, float>>{
           {&LimiterParameter::fCeiling, -9},
           {&LimiterParameter::fThreshold, -15},
           {&LimiterParameter::fPreGain, 3},
           {&LimiterParameter::fRelease, 30},
           {&LimiterParameter::fAttack, 2},
           {&LimiterParameter::fLookahead, 3},
           {&LimiterParameter::fLookaheadRatio, 1},
           {&LimiterParameter::fRMS, 10},
           {&LimiterParameter::fStLink, 0}}) {
    LimiterParameter changed = base;
    changed.*field = value;
    EXPECT_NE(AfterAChange(base, changed), AfterAChange(base, base)) << value;
  }
}

}  // namespace
