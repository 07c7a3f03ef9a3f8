#include "engine_api/effects/mit_hrtf.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <set>
#include <tuple>
#include <vector>

#include "support/captured_stderr.h"

namespace {

using testing::Each;
using testing::IsEmpty;

constexpr size_t kRoom = 8192;  // Taps.
constexpr short kUntouched = 12345;

struct Responses {
  Responses(int azimuthAsked, int elevationAsked, unsigned rate = 44100, unsigned diffused = 0)
      : azimuth(azimuthAsked), elevation(elevationAsked) {
    taps = mit_hrtf_get(&azimuth, &elevation, rate, diffused, left.data(), right.data());
  }

  int azimuth;
  int elevation;
  std::vector<short> left = std::vector<short>(kRoom, kUntouched);
  std::vector<short> right = std::vector<short>(kRoom, kUntouched);
  unsigned taps;
};

// Of the impulse response as numbers in [-1, 1).
double Energy(const std::vector<short>& response, unsigned taps) {
  double sum = 0;
  for (size_t i = 0; i < taps; ++i) sum += std::pow(response[i] / 32768.0, 2);
  return sum;
}

// The first tap of at least a tenth of the largest.
unsigned Onset(const std::vector<short>& response, unsigned taps) {
  int peak = 0;
  for (size_t i = 0; i < taps; ++i) peak = std::max(peak, std::abs(response[i]));
  unsigned onset = 0;
  while (std::abs(response[onset]) * 10 < peak) ++onset;
  return onset;
}

TEST(MitHrtf, AnswersTheMeasuredFiguresAtTheRightEar) {
  const Responses at(90, 0);
  ASSERT_EQ(at.taps, 512U);
  EXPECT_EQ(at.azimuth, 90);
  EXPECT_EQ(at.elevation, 0);
  EXPECT_NEAR(Energy(at.right, at.taps), 2.54, 0.005);
  EXPECT_EQ(Onset(at.right, at.taps), 29U);
  EXPECT_NEAR(Energy(at.left, at.taps), 0.168, 0.0005);
  EXPECT_EQ(Onset(at.left, at.taps), 56U);
}

// The measurements are 16-bit numbers, and they come out as they are.
TEST(MitHrtf, KeepsTheMeasurementsExactly) {
  const Responses at(90, 0);
  EXPECT_EQ(at.right[37], 18471);
  EXPECT_EQ(*std::max_element(at.right.begin(), at.right.begin() + 512), 18471);
  EXPECT_EQ(at.left[68], 4482);
}

TEST(MitHrtf, WritesNoMoreThanItsTaps) {
  const Responses at(90, 0);
  EXPECT_THAT(std::vector<short>(at.left.begin() + 512, at.left.end()), Each(kUntouched));
  EXPECT_THAT(std::vector<short>(at.right.begin() + 512, at.right.end()), Each(kUntouched));
}

TEST(MitHrtf, SwapsTheEarsOnTheOtherSide) {
  const Responses right(90, 0);
  const Responses left(270, 0);
  EXPECT_EQ(left.azimuth, 270);
  EXPECT_NEAR(Energy(left.left, 512), Energy(right.right, 512), 0.1);
  EXPECT_NEAR(Energy(left.right, 512), Energy(right.left, 512), 0.02);
  EXPECT_LT(Onset(left.left, 512) + 20, Onset(left.right, 512));
}

TEST(MitHrtf, HearsAheadAndOverheadAlikeInBothEars) {
  for (const Responses& at : {Responses(0, 0), Responses(0, 90), Responses(180, 0)}) {
    EXPECT_NEAR(10 * std::log10(Energy(at.left, 512) / Energy(at.right, 512)), 0, 1);
    EXPECT_NEAR(Onset(at.left, 512), Onset(at.right, 512), 2);
  }
}

TEST(MitHrtf, LevelDifferenceFollowsTheSide) {
  for (int azimuth = 30; azimuth <= 150; azimuth += 10) {
    const Responses at(azimuth, 0);
    EXPECT_GT(Energy(at.right, 512), 2 * Energy(at.left, 512)) << azimuth;
    const Responses mirrored(-azimuth, 0);
    EXPECT_GT(Energy(mirrored.left, 512), 2 * Energy(mirrored.right, 512)) << azimuth;
  }
}

struct Move {
  int azimuth, elevation, azimuthUsed, elevationUsed;
};

// At the elevation of 40 degrees two of the azimuths are 38.57 and 45 degrees.
TEST(MitHrtf, MovesToTheNearestPosition) {
  const Move moves[] = {
      {92, 0, 90, 0},      {93, 0, 95, 0},       {2, 0, 0, 0},         {358, 0, 0, 0},
      {357, 0, 355, 0},    {-90, 0, 270, 0},     {450, 0, 90, 0},      {-270, 4, 90, 0},
      {90, 6, 90, 10},     {90, 5, 90, 0},       {90, -5, 90, -10},    {123, 90, 0, 90},
      {0, 1000, 0, 90},    {0, -90, 0, -40},     {90, 84, 90, 80},     {44, 80, 30, 80},
      {3, 30, 0, 30},      {4, 30, 6, 30},       {INT_MAX, 0, 125, 0}, {INT_MIN, 0, 230, 0},
      {0, INT_MAX, 0, 90}, {0, INT_MIN, 0, -40}, {41, 40, 39, 40},     {42, 40, 45, 40},
  };
  for (const Move& move : moves) {
    const Responses at(move.azimuth, move.elevation);
    EXPECT_EQ(at.taps, 512U);
    EXPECT_EQ(at.azimuth, move.azimuthUsed) << move.azimuth << ", " << move.elevation;
    EXPECT_EQ(at.elevation, move.elevationUsed) << move.azimuth << ", " << move.elevation;
  }
}

TEST(MitHrtf, WrapsToTheSamePosition) {
  const Responses at(90, 0);
  for (const int azimuth : {90 - 360, 90 + 360, 90 + 3600, 90 - 3600}) {
    EXPECT_EQ(Responses(azimuth, 0).left, at.left);
    EXPECT_EQ(Responses(azimuth, 0).right, at.right);
  }
}

// Asked for every degree, a position answers with itself when it is asked for again.
TEST(MitHrtf, ReachesAllMeasuredPositionsAndStaysThere) {
  std::set<std::tuple<int, int>> positions;
  for (int elevation = -40; elevation <= 90; elevation += 10) {
    for (int azimuth = 0; azimuth < 360; ++azimuth) {
      const Responses at(azimuth, elevation);
      ASSERT_EQ(at.elevation, elevation);
      ASSERT_TRUE(at.azimuth >= 0 && at.azimuth < 360);
      positions.insert({at.azimuth, at.elevation});
    }
  }
  EXPECT_EQ(positions.size(), 710U);
  for (const auto& [azimuth, elevation] : positions) {
    const Responses at(azimuth, elevation);
    EXPECT_EQ(std::tuple(at.azimuth, at.elevation), std::tuple(azimuth, elevation));
  }
}

TEST(MitHrtf, SaysBeforehandHowManyTapsThereAre) {
  EXPECT_EQ(mit_hrtf_availability(90, 0, 44100, 0), 512U);
  EXPECT_EQ(mit_hrtf_availability(-1000, 1000, 44100, 0), 512U);
  EXPECT_EQ(mit_hrtf_availability(90, 0, 48000, 0), 558U);
  EXPECT_EQ(Responses(90, 0, 48000).taps, 558U);
}

// The gain of a response at one frequency.
double Gain(const std::vector<short>& response, unsigned taps, double hertz, unsigned rate) {
  double re = 0;
  double im = 0;
  for (size_t i = 0; i < taps; ++i) {
    const double angle = 2 * M_PI * hertz * static_cast<double>(i) / rate;
    re += response[i] / 32768.0 * std::cos(angle);
    im -= response[i] / 32768.0 * std::sin(angle);
  }
  return std::hypot(re, im);
}

TEST(MitHrtf, SoundsTheSameAtTheHigherRate) {
  for (const int azimuth : {0, 90, 270}) {
    const Responses measured(azimuth, 0);
    const Responses at(azimuth, 0, 48000);
    ASSERT_EQ(at.taps, 558U);
    for (const double hertz : {100, 300, 1000, 3000, 10000, 15000}) {
      for (const auto ear : {&Responses::left, &Responses::right}) {
        const double dB = 20 * std::log10(Gain(at.*ear, 558, hertz, 48000) /
                                          Gain(measured.*ear, 512, hertz, 44100));
        EXPECT_NEAR(dB, 0, 0.1) << azimuth << ", " << hertz;
      }
    }
  }
}

TEST(MitHrtf, KeepsTheInterauralDelayAtTheHigherRate) {
  const Responses at(90, 0, 48000);
  const int delay = static_cast<int>(Onset(at.left, at.taps) - Onset(at.right, at.taps));
  // 27 samples at 44.1 kHz.
  EXPECT_NEAR(1e6 * delay / 48000, 1e6 * 27 / 44100, 40);
}

TEST(MitHrtf, NeverClips) {
  for (const unsigned rate : {44100U, 48000U}) {
    for (int azimuth = 0; azimuth < 360; azimuth += 5) {
      const Responses at(azimuth, 0, rate);
      const auto [lowest, highest] =
          std::minmax_element(at.right.begin(), at.right.begin() + at.taps);
      EXPECT_GT(*lowest, -32768) << rate << ", " << azimuth;
      EXPECT_LT(*highest, 32767) << rate << ", " << azimuth;
    }
  }
}

TEST(MitHrtf, LeavesAllUntouchedWhenThereIsNoSuchSet) {
  const CapturedStderr log;
  const std::vector<std::tuple<unsigned, unsigned>> missing = {
      {44100, 1}, {44100, 0xFFFFFFFF}, {0, 0},     {8000, 0},      {44101, 0},
      {48000, 1}, {88200, 0},          {96000, 0}, {0xFFFFFFFF, 0}};
  for (const auto& [rate, diffused] : missing) {
    const Responses at(93, 7, rate, diffused);
    EXPECT_EQ(at.taps, 0U);
    EXPECT_EQ(at.azimuth, 93);
    EXPECT_EQ(at.elevation, 7);
    EXPECT_THAT(at.left, Each(kUntouched));
    EXPECT_THAT(at.right, Each(kUntouched));
    EXPECT_EQ(mit_hrtf_availability(93, 7, rate, diffused), 0U);
  }
  EXPECT_THAT(log.Lines(), IsEmpty());
}

}  // namespace
