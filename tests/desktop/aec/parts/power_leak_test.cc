#include "desktop/aec/parts/power_leak.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr float kRate = 0.01f;

// What is told of two powers that waver, block by block.
template <typename Powers>
desktop::PowerLeak Followed(Powers powers) {
  desktop::PowerLeak leak(0);
  std::minstd_rand random(3);
  for (int block = 0; block < 2000; ++block) {
    const auto [signal, source] = powers(random);
    leak.Follow(signal, source, kRate, kRate);
  }
  return leak;
}

float Power(std::minstd_rand& random) { return static_cast<float>(random() % 1000); }

TEST(PowerLeak, WhatLeaksWaversTogether) {
  const desktop::PowerLeak leak = Followed([](std::minstd_rand& random) {
    const float source = Power(random);
    return std::pair(0.25f * source, source);
  });
  EXPECT_NEAR(leak.Share(0, 1), 0.25f, 1e-3f);
  EXPECT_NEAR(leak.Correlation(), 1, 1e-3f);
}

TEST(PowerLeak, StrangersHardlyWaverTogether) {
  const desktop::PowerLeak leak = Followed([](std::minstd_rand& random) {
    const float source = Power(random);
    return std::pair(Power(random), source);
  });
  EXPECT_NEAR(leak.Correlation(), 0, 0.25f);
}

// Half of what wavers is the source's: the correlation is the root of that share.
TEST(PowerLeak, AStrangerBesideTheLeakIsTold) {
  const desktop::PowerLeak leak = Followed([](std::minstd_rand& random) {
    const float source = Power(random);
    return std::pair(source + Power(random), source);
  });
  EXPECT_NEAR(leak.Correlation(), std::sqrt(0.5f), 0.12f);
}

TEST(PowerLeak, OneGoesDownWhereTheOtherGoesUp) {
  const desktop::PowerLeak leak = Followed([](std::minstd_rand& random) {
    const float source = Power(random);
    return std::pair(2000 - source, source);
  });
  EXPECT_NEAR(leak.Correlation(), -1, 1e-3f);
}

// Powers of spectra are large: the product of two of their squares is no float.
TEST(PowerLeak, LoudPowersAreAsAlikeAsSoftOnes) {
  const desktop::PowerLeak leak = Followed([](std::minstd_rand& random) {
    const float source = 1e11f * Power(random);
    return std::pair(source, source);
  });
  EXPECT_NEAR(leak.Correlation(), 1, 1e-3f);
}

TEST(PowerLeak, SilenceIsLikeNothing) {
  EXPECT_EQ(desktop::PowerLeak(1).Correlation(), 0);
  const desktop::PowerLeak leak =
      Followed([](std::minstd_rand& random) { return std::pair(0.0f, Power(random)); });
  EXPECT_EQ(leak.Correlation(), 0);
}

}  // namespace
