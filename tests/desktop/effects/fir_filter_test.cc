#include "engine_api/effects/fir_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <vector>

#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/vector_targets.h"

namespace {

using Floats = std::vector<float>;
using FirFilter = VectorTargetTest;

constexpr size_t kCounts[] = {1,   2,   3,   4,   5,   15,  16,  17,  31,  63,  64,   127, 128,
                              129, 255, 256, 257, 300, 511, 512, 513, 514, 515, 1000, 1001};

std::unique_ptr<zuwebrtc::FIRFilter> Create(const Floats& taps, size_t maxLength = 441) {
  return std::unique_ptr<zuwebrtc::FIRFilter>(
      zuwebrtc::FIRFilter::Create(taps.data(), taps.size(), maxLength));
}

Floats Filter(zuwebrtc::FIRFilter& filter, const Floats& in) {
  Floats out(in.size(), 99.0f);
  filter.Filter(in.data(), in.size(), out.data());
  return out;
}

// Uniform in [-scale, scale).
Floats Noise(size_t count, float scale, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> uniform(-scale, scale);
  Floats noise(count);
  for (float& value : noise) value = uniform(random);
  return noise;
}

// A response that dies away as that of a head does.
Floats Response(size_t count) {
  Floats taps = Noise(count, 1.0f, 7);
  for (size_t i = 0; i < count; ++i) taps[i] *= std::exp(-0.02f * static_cast<float>(i));
  return taps;
}

double Exact(const Floats& in, const Floats& taps, size_t at) {
  // Pointers, because each index is a call in a build that does not optimise.
  const float* const tap = taps.data();
  const float* const newest = in.data() + at;
  double sum = 0;
  for (size_t i = 0, count = std::min(taps.size(), at + 1); i < count; ++i) {
    sum += double{tap[i]} * double{*(newest - i)};
  }
  return sum;
}

// The answer to an impulse after 20 samples, and after 21.
void ExpectCoefficients(const Floats& taps, float tolerance) {
  for (const size_t at : {20u, 21u}) {
    Floats in(taps.size() + 50);
    in[at] = 1;
    const Floats out = Filter(*Create(taps), in);
    for (size_t i = 0; i < in.size(); ++i) {
      const bool inside = i >= at && i < at + taps.size();
      ASSERT_NEAR(out[i], inside ? taps[i - at] : 0, inside ? tolerance : 0)
          << taps.size() << " taps, " << i;
    }
  }
}

TEST_P(FirFilter, GivesItsCoefficientsForAnImpulse) {
  for (const size_t count : kCounts)
    ExpectCoefficients(Response(count), count < 256 ? 0 : 0x1p-22f);
}

TEST_P(FirFilter, GivesCoefficientsOf16BitsUnrounded) {
  for (const size_t count : kCounts) {
    Floats taps = Response(count);
    for (float& tap : taps) tap = std::round(tap * 32767) / 32768;
    ExpectCoefficients(taps, 0);
  }
}

TEST_P(FirFilter, GivesTheSameBitsHoweverTheInputIsCut) {
  std::mt19937 random(3);
  for (const size_t count : kCounts) {
    const Floats taps = Response(count);
    const Floats in = Noise(4000, 1, 5);
    const Floats whole = Filter(*Create(taps, in.size()), in);
    const auto expectSame = [&](const auto& nextLength, unsigned what) {
      const auto filter = Create(taps);
      // So many calls fill the histories of every level, which then move.
      Floats cut(std::min<size_t>(in.size(), 1500 * what));
      for (size_t at = 0; at < cut.size();) {
        const size_t length = std::min<size_t>(nextLength(), cut.size() - at);
        filter->Filter(&in[at], length, &cut[at]);
        at += length;
      }
      ASSERT_TRUE(std::ranges::equal(cut, std::span(whole).first(cut.size())))
          << count << " taps, " << what << " samples";
    };
    for (const unsigned length : {1u, 2u, 3u, 441u, 1765u}) {
      expectSame([length] { return length; }, length);
    }
    for (const unsigned longest : {1u, 7u, 40u, 441u, 1765u, 3000u}) {
      expectSame([&] { return random() % (longest + 1); }, longest);
    }
  }
}

TEST_P(FirFilter, WritesNothingBehindTheOutput) {
  for (size_t length = 0; length <= 300; ++length) {
    const Floats in = Noise(length, 1, 6);
    Floats out(length + 64, 99.0f);
    Create(Response(100))->Filter(in.data(), length, out.data());
    for (size_t i = length; i < out.size(); ++i) ASSERT_EQ(out[i], 99.0f) << length;
  }
}

// Full scale goes in, and no more than that can come out.
TEST_P(FirFilter, IsWithinTwoTenMillionthsOfADoubleConvolution) {
  for (const size_t count : kCounts) {
    Floats taps = Response(count);
    float sum = 0;
    for (const float tap : taps) sum += std::abs(tap);
    for (float& tap : taps) tap /= sum;
    const Floats in = Noise(5000, 1, 8);
    const Floats out = Filter(*Create(taps), in);
    for (size_t i = 0; i < in.size(); ++i) ASSERT_NEAR(out[i], Exact(in, taps, i), 2e-7) << count;
  }
}

TEST_P(FirFilter, WorksInPlace) {
  const Floats taps = Response(512);
  Floats samples = Noise(10000, 1, 9);
  const Floats expected = Filter(*Create(taps), samples);
  Create(taps)->Filter(samples.data(), samples.size(), samples.data());
  EXPECT_EQ(samples, expected);
}

TEST_P(FirFilter, KeepsAnInfinityToTheLengthOfItsResponse) {
  for (const float bad : {std::numeric_limits<float>::infinity(), std::nanf("")}) {
    for (const size_t count : kCounts) {
      Floats in = Noise(3000, 1, 10);
      in[700] = bad;
      const Floats out = Filter(*Create(Response(count)), in);
      for (size_t i = 0; i < in.size(); ++i) {
        ASSERT_EQ(std::isfinite(out[i]), i < 700 || i >= 700 + count) << count << " taps, " << i;
      }
    }
  }
}

TEST_P(FirFilter, TakesCallsLongerThanAnnounced) {
  const Floats taps = Response(512);
  const Floats in = Noise(50000, 1, 11);
  for (const unsigned announced : {0u, 1u, 441u}) {
    const Floats out = Filter(*Create(taps, announced), in);
    for (size_t i = 0; i < in.size(); i += 97) ASSERT_NEAR(out[i], Exact(in, taps, i), 1e-5);
  }
}

TEST(FirFilterState, IsSilentWithoutCoefficients) {
  const std::unique_ptr<zuwebrtc::FIRFilter> filter(zuwebrtc::FIRFilter::Create(nullptr, 0, 441));
  EXPECT_EQ(Filter(*filter, Noise(5000, 1, 12)), Floats(5000));
  filter->Filter(nullptr, 0, nullptr);
}

TEST(FirFilterState, CopiesItsCoefficients) {
  Floats taps = {1, 2, 3};
  const auto filter = Create(taps);
  taps.assign(3, 0.0f);
  EXPECT_EQ(Filter(*filter, {1, 0, 0, 0}), (Floats{1, 2, 3, 0}));
}

TEST(FirFilterState, BelongsToOneFilter) {
  const auto first = Create({1, 2});
  const auto second = Create({1, 2});
  EXPECT_EQ(Filter(*first, {1}), Floats{1});
  EXPECT_EQ(Filter(*second, {10}), Floats{10});
  EXPECT_EQ(Filter(*first, {0}), Floats{2});
  EXPECT_EQ(Filter(*second, {0}), Floats{20});
}

TEST(FirFilterUpdate, KeepsTheHistory) {
  const auto filter = Create({0, 0, 0});
  Filter(*filter, {5, 6, 7});
  const Floats taps = {1, 10, 100};
  filter->UpdateCoeffients(taps.data(), 3);
  EXPECT_EQ(Filter(*filter, {8, 0, 0, 0}), (Floats{8 + 70 + 600, 80 + 700, 800, 0}));
}

TEST(FirFilterUpdate, KeepsWhatOfTheHistoryFitsFewerCoefficients) {
  const auto filter = Create({0, 0, 0});
  Filter(*filter, {5, 6, 7});
  const Floats taps = {1, 10};
  filter->UpdateCoeffients(taps.data(), 2);
  EXPECT_EQ(Filter(*filter, {8, 0, 0}), (Floats{8 + 70, 80, 0}));
}

TEST(FirFilterUpdate, TakesSamplesOlderThanTheHistoryForZero) {
  const auto filter = Create({0, 0});
  Filter(*filter, {5, 6, 7});
  const Floats taps = {1, 10, 100, 1000};
  filter->UpdateCoeffients(taps.data(), 4);
  EXPECT_EQ(Filter(*filter, {8, 0, 0, 0}), (Floats{8 + 70, 80 + 700, 800 + 7000, 8000}));
}

// Whole numbers, so that no output is rounded. The changes come after an odd number of samples.
TEST_P(FirFilter, TakesLongerAndShorterCoefficientsBetweenTwoSamples) {
  const auto wholeNumbers = [](size_t count, unsigned seed) {
    Floats numbers = Noise(count, 9, seed);
    for (float& number : numbers) number = std::round(number);
    return numbers;
  };
  const Floats in = wholeNumbers(20000, 14);
  const auto filter = Create(wholeNumbers(1030, 15));
  Filter(*filter, Floats(in.begin(), in.begin() + 1501));
  size_t at = 1501;
  size_t kept = 1030;
  for (const size_t count : {1029u, 514u, 513u, 513u, 100u, 600u, 256u, 1u, 255u, 512u}) {
    const Floats taps = wholeNumbers(count, 16);
    filter->UpdateCoeffients(taps.data(), count);
    kept = std::min(kept, count);
    Floats heard(in.begin(), in.begin() + static_cast<ptrdiff_t>(at + 701));
    std::fill(heard.begin(), heard.begin() + static_cast<ptrdiff_t>(at - (kept - 1)), 0.0f);
    const Floats out = Filter(*filter, Floats(&in[at], &in[at] + 701));
    for (size_t i = 0; i < out.size(); ++i) {
      ASSERT_EQ(out[i], static_cast<float>(Exact(heard, taps, at + i))) << count << " taps, " << i;
    }
    at += 701;
    kept = count;
  }
}

INSTANTIATE_TEST_SUITE_P(, FirFilter, EveryVectorTarget(), VectorTargetName);

TEST(FirFilterUpdate, GoesToSilenceAndBack) {
  const auto filter = Create({1, 2});
  EXPECT_EQ(Filter(*filter, {1, 1}), (Floats{1, 3}));
  filter->UpdateCoeffients(nullptr, 0);
  EXPECT_EQ(Filter(*filter, {1, 1}), (Floats{0, 0}));
  const Floats taps = {1, 2};
  filter->UpdateCoeffients(taps.data(), 2);
  EXPECT_EQ(Filter(*filter, {1, 1}), (Floats{1, 3}));
}

TEST(FirFilterMemory, IsNotAskedForDuringCalls) {
  const auto filter = Create(Response(512), 441);
  const Floats in = Noise(441, 1, 13);
  Floats out(in.size());
  const size_t before = AllocationCount();
  for (int call = 0; call < 50; ++call) filter->Filter(in.data(), in.size(), out.data());
  EXPECT_EQ(AllocationCount(), before);
  EXPECT_GT(before, 0u);
}

TEST(FirFilterMemory, GivesNoFilterWhenThereIsTooLittle) {
  const float tap = 1;
  CapturedStderr log;
  EXPECT_EQ(zuwebrtc::FIRFilter::Create(&tap, SIZE_MAX, 441), nullptr);
  EXPECT_EQ(log.Lines().size(), 1u) << log.Text();
}

TEST(FirFilterMemory, KeepsTheOldCoefficientsWhenThereIsTooLittle) {
  const auto filter = Create({1, 2});
  Filter(*filter, {1});
  const float tap = 5;
  CapturedStderr log;
  filter->UpdateCoeffients(&tap, SIZE_MAX);
  EXPECT_EQ(log.Lines().size(), 1u) << log.Text();
  EXPECT_EQ(Filter(*filter, {1, 0}), (Floats{3, 2}));
}

}  // namespace
