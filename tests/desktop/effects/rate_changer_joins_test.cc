// Where RateChanger joins what it plays, heard in noise: four samples of it tell where they stand.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <optional>
#include <tuple>

#include "engine_api/effects/rate_changer.h"
#include "support/signals.h"
#include "support/voice.h"

namespace {

using Shorts = std::vector<short>;

constexpr int kRate = 16000;

Shorts Noise(double seconds) {
  return ToShorts(WhiteNoise(static_cast<int>(kRate * seconds), 0.25, 5));
}

// Plays `in` in blocks of so many frames; `after` hears how much went in and all that came out.
template <typename After>
Shorts Play(double ratio, Shorts in, size_t block, After after) {
  RateChanger changer(true);
  changer.SetEnabled(true);
  changer.SetRatio(ratio);
  changer.SetFsAndCh(kRate, 1);
  Shorts out;
  std::string bytes;
  for (size_t done = 0; done + block <= in.size(); done += block) {
    changer.Process(&in[done], static_cast<int>(block), 1, bytes);
    const size_t before = out.size();
    out.resize(before + bytes.size() / sizeof(short));
    if (!bytes.empty()) memcpy(&out[before], bytes.data(), bytes.size());
    after(done + block, out);
  }
  return out;
}

Shorts Play(double ratio, const Shorts& in) {
  return Play(ratio, in, in.size(), [](size_t, const Shorts&) {});
}

class Places {
 public:
  explicit Places(const Shorts& in) {
    for (size_t i = 0; i + 4 <= in.size(); ++i) m_places[Key(&in[i])] = i;
  }

  // Whether the four samples from `samples` on stand in the input, and where.
  bool Has(const short* samples) const { return m_places.count(Key(samples)) > 0; }
  size_t Of(const short* samples) const { return m_places.at(Key(samples)); }

 private:
  static std::array<short, 4> Key(const short* s) { return {s[0], s[1], s[2], s[3]}; }
  std::map<std::array<short, 4>, size_t> m_places;
};

// Between its joins it copies. More joins than needed make a sound rough, sudden ones click.
TEST(RateChanger, LeavesMostOfASoundAsItIs) {
  const Shorts in = Noise(4);
  const Places places(in);
  for (const auto& [ratio, least, most] :
       {std::tuple{0.5, 0.7, 0.8}, {1.25, 0.8, 0.9}, {2.0, 0.75, 0.85}, {3.0, 0.63, 0.72}}) {
    const Shorts out = Play(ratio, in);
    int copied = 0;
    for (size_t i = 0; i + 4 <= out.size(); ++i) copied += places.Has(&out[i]) ? 1 : 0;
    const double share = copied / static_cast<double>(out.size());
    EXPECT_GT(share, least) << ratio;
    EXPECT_LT(share, most) << ratio;
  }
}

// The shortest time from join to join, in ms: the copied samples between two fades, and a fade.
double ShortestSegment(const Places& places, const Shorts& out) {
  size_t shortest = out.size();
  size_t run = 0;
  bool afterFade = false;
  std::optional<size_t> before;
  for (size_t i = 0; i + 4 <= out.size(); ++i) {
    std::optional<size_t> place;
    if (places.Has(&out[i])) place = places.Of(&out[i]);
    const bool copied = place && before && *place == *before + 1;
    before = place;
    if (copied) {
      ++run;
    } else if (run > 0) {
      if (afterFade) shortest = std::min(shortest, run);
      afterFade = true;
      run = 0;
    }
  }
  constexpr double kFadeMs = 10;
  return static_cast<double>(shortest) / kRate * 1000 + kFadeMs;
}

// Slow sounds are smoother when joins come as soon as they are needed, those that are a little
// faster when there are few.
TEST(RateChanger, JoinsAsOftenAsTheSpeedNeeds) {
  const Shorts in = Noise(4);
  const Places places(in);
  for (const auto& [ratio, ms] : {std::pair{0.25, 20.0},
                                  {0.5, 20.0},
                                  {0.65, 28.5},
                                  {0.8, 30.0},
                                  {1.1, 50.0},
                                  {1.25, 50.0},
                                  {1.35, 37.1},
                                  {1.5, 30.0},
                                  {2.0, 40.0},
                                  {3.0, 30.0}}) {
    EXPECT_NEAR(ShortestSegment(places, Play(ratio, in)), ms, 0.7) << ratio;
  }
}

// What has just been played came in at most 100 ms ago, beyond the block that has just come.
TEST(RateChanger, PlaysNothingOlderThanItsHeaderSays) {
  const Shorts in = Noise(4);
  const Places places(in);
  for (const double ratio : {0.25, 0.5, 1.25, 2.0, 3.0, 4.0}) {
    size_t oldest = 0;
    Play(ratio, in, kRate / 100, [&](size_t done, const Shorts& out) {
      if (out.size() < 4 || !places.Has(&out[out.size() - 4])) return;
      oldest = std::max(oldest, done - places.Of(&out[out.size() - 4]) - 4);
    });
    EXPECT_LE(oldest, size_t{kRate / 1000 * 110}) << ratio;
    EXPECT_GT(oldest, 0U) << ratio;
  }
}

// A plain fade between stretches that have nothing in common is 3 dB too weak at its middle.
TEST(RateChanger, HoldsTheLevelOfNoise) {
  const Shorts in = Noise(10);
  for (const double ratio : {0.5, 0.8, 1.25, 2.0}) {
    EXPECT_NEAR(Decibels(Level(Play(ratio, in)) / Level(in)), 0, 0.15) << ratio;
  }
}

// Kept at its power, a fade between loud stretches would go beyond full scale.
TEST(RateChanger, ClipsAndDoesNotWrapRoundInAFade) {
  Shorts in = Noise(4);
  for (short& sample : in) sample = sample > 0 ? 32767 : 20000;
  const Shorts out = Play(2, in);
  EXPECT_GT(*std::min_element(out.begin(), out.end()), 0);
}

}  // namespace
