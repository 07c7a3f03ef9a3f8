#include "audio_measures/beats.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace audio_measures {
namespace {

// 120 BPM from 5 s on, moved by `later` seconds.
std::vector<double> Beats(int count, double later) {
  std::vector<double> beats;
  for (int i = 0; i < count; ++i) beats.push_back(5.25 + 0.5 * i + later);
  return beats;
}

double F(const std::vector<double>& reference, const std::vector<double>& beats) {
  return BeatF(reference, beats).value.value_or(-1);
}

TEST(BeatF, Within70MillisecondsOnEitherSideIsAHit) {
  for (const double sign : {-1.0, 1.0}) {
    EXPECT_DOUBLE_EQ(F(Beats(20, 0), Beats(20, sign * 0.0699)), 1);
    EXPECT_DOUBLE_EQ(F(Beats(20, 0), Beats(20, sign * 0.07)), 1);
    EXPECT_DOUBLE_EQ(F(Beats(20, 0), Beats(20, sign * 0.0701)), 0);
  }
}

// 10 of 20 found: 2 * 10 / (20 + 10). Twice as many as there are: 2 * 20 / (20 + 40).
TEST(BeatF, MissedAndInventedBeatsCountAlike) {
  const std::vector<double> reference = Beats(20, 0);
  const std::vector<double> half(reference.begin(), reference.begin() + 10);
  EXPECT_DOUBLE_EQ(F(reference, half), 2.0 / 3);
  EXPECT_DOUBLE_EQ(F(half, reference), 2.0 / 3);
  std::vector<double> twice = reference;
  for (const double beat : reference) twice.push_back(beat + 0.25);
  EXPECT_DOUBLE_EQ(F(reference, twice), 2.0 / 3);
}

TEST(BeatF, NoBeatIsUsedTwice) {
  EXPECT_DOUBLE_EQ(F({6, 7}, {5.95, 6.05}), 0.5);
  EXPECT_DOUBLE_EQ(F({5.95, 6.05}, {6, 7}), 0.5);
}

// Each of the two has a partner, though the second could have the first one's.
TEST(BeatF, AsManyAreHitAsCanBePaired) {
  EXPECT_DOUBLE_EQ(F({6, 6.1}, {6.05, 6.15}), 1);
  EXPECT_DOUBLE_EQ(F({6, 6.1}, {5.95, 6.05}), 1);
}

TEST(BeatF, TheFirst5SecondsDoNotCount) {
  std::vector<double> reference = Beats(20, 0);
  std::vector<double> beats = reference;
  beats.push_back(4.999);
  EXPECT_DOUBLE_EQ(F(reference, beats), 1);
  reference.push_back(1);
  EXPECT_DOUBLE_EQ(F(reference, beats), 1);
  beats.push_back(5);
  EXPECT_DOUBLE_EQ(F(reference, beats), 2 * 20.0 / 41);
}

TEST(BeatF, TheOrderDoesNotCount) { EXPECT_DOUBLE_EQ(F({8, 6, 7}, {7, 8, 6}), 1); }

TEST(BeatF, NothingFoundIsNoneHitAndNothingToBeFoundIsUnknown) {
  EXPECT_DOUBLE_EQ(F(Beats(20, 0), {}), 0);
  EXPECT_DOUBLE_EQ(F(Beats(20, 0), {1, 2}), 0);
  EXPECT_EQ(std::string(BeatF({}, Beats(20, 0)).reason), "no beat of the reference after 5 s");
  const std::vector<double> early = {1, 2};
  EXPECT_FALSE(BeatF(early, Beats(20, 0)).value);
  const std::vector<double> broken = {6, std::numeric_limits<double>::quiet_NaN()};
  EXPECT_EQ(std::string(BeatF(Beats(20, 0), broken).reason), "beats that are not finite");
  EXPECT_EQ(std::string(BeatF(broken, Beats(20, 0)).reason), "beats that are not finite");
}

}  // namespace
}  // namespace audio_measures
