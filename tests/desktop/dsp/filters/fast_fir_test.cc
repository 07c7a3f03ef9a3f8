#include "desktop/dsp/filters/fast_fir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <random>
#include <vector>

#include "desktop/dsp/filters/pair_kernel.h"
#include "support/vector_targets.h"

// All numbers are small whole ones, which floats add and multiply without rounding: every output is
// known to the last bit.

namespace {

using Floats = std::vector<float>;
using FastFir = VectorTargetTest;

constexpr size_t kMaxSamples = 256;

Floats WholeNumbers(size_t count, int largest, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> uniform(-largest, largest);
  Floats numbers(count);
  for (float& number : numbers) number = static_cast<float>(uniform(random));
  return numbers;
}

Floats Convolution(const Floats& in, const Floats& taps) {
  Floats out(in.size());
  for (size_t n = 0; n < in.size(); ++n) {
    for (size_t k = 0; k < taps.size() && k <= n; ++k) out[n] += taps[k] * in[n - k];
  }
  return out;
}

// Filters all samples in calls of these lengths, again and again.
Floats Filter(const Floats& taps, size_t levels, const Floats& in,
              std::initializer_list<size_t> calls) {
  const auto filter = desktop::MakeFastFir(taps.data(), taps.size(), levels, kMaxSamples);
  Floats padded = in;
  padded.resize(in.size() + desktop::kPairSlack, 77.0f);
  Floats out(in.size(), 99.0f);
  auto call = calls.begin();
  for (size_t at = 0; at < in.size();) {
    const size_t samples = std::min(*call, in.size() - at);
    filter->Filter(&padded[at], samples, &out[at]);
    at += samples;
    if (++call == calls.end()) call = calls.begin();
  }
  return out;
}

TEST_P(FastFir, IsAConvolutionWithoutDelayHoweverTheInputIsCut) {
  for (const size_t levels : {1u, 2u, 3u}) {
    for (const size_t parts : {1u, 2u, 3u, 5u, 32u, 65u}) {
      const Floats taps = WholeNumbers(parts << levels, 9, 1);
      const Floats in = WholeNumbers(1500, 30, 2);
      const Floats expected = Convolution(in, taps);
      for (const std::initializer_list<size_t> calls :
           std::initializer_list<std::initializer_list<size_t>>{{1},
                                                                {2},
                                                                {3},
                                                                {kMaxSamples},
                                                                {kMaxSamples - 1},
                                                                {1, 0, 2, 0, 0, 3},
                                                                {5, 100, 1, 1}}) {
        EXPECT_EQ(Filter(taps, levels, in, calls), expected)
            << taps.size() << " taps, " << levels << " levels, first " << *calls.begin();
      }
    }
  }
}

TEST_P(FastFir, AnswersEverySampleBeforeTheNextOneIsThere) {
  const Floats taps = {1, 10, 100, 1000};
  const auto filter = desktop::MakeFastFir(taps.data(), taps.size(), 2, 1);
  const Floats in = {1, 2, 3, 4, 5, 6};
  const Floats expected = {
      1, 2 + 10, 3 + 20 + 100, 4 + 30 + 200 + 1000, 5 + 40 + 300 + 2000, 6 + 50 + 400 + 3000};
  for (size_t n = 0; n < in.size(); ++n) {
    Floats one(1 + desktop::kPairSlack, 77.0f);
    one[0] = in[n];
    float out = 0;
    filter->Filter(one.data(), 1, &out);
    EXPECT_EQ(out, expected[n]) << n;
  }
}

TEST_P(FastFir, WritesNothingBehindTheOutput) {
  const Floats taps = WholeNumbers(8, 9, 3);
  const auto filter = desktop::MakeFastFir(taps.data(), taps.size(), 2, kMaxSamples);
  const Floats in(kMaxSamples + desktop::kPairSlack, 1.0f);
  for (size_t samples = 0; samples <= kMaxSamples; ++samples) {
    Floats out(samples + 64, 99.0f);
    filter->Filter(in.data(), samples, out.data());
    for (size_t i = samples; i < out.size(); ++i) ASSERT_EQ(out[i], 99.0f) << samples;
  }
}

TEST_P(FastFir, TakesPairsApartAndPutsThemTogether) {
  for (size_t pairs = 0; pairs <= 40; ++pairs) {
    const size_t room = pairs + desktop::kPairSlack;
    const Floats in = WholeNumbers(2 * room, 50, 4);
    Floats even(room);
    Floats odd(room);
    Floats difference(room);
    desktop::SplitPairs(in.data(), pairs, even.data(), odd.data(), difference.data());
    for (size_t k = 0; k < pairs; ++k) {
      ASSERT_EQ(even[k], in[2 * k]);
      ASSERT_EQ(odd[k], in[2 * k + 1]);
      ASSERT_EQ(difference[k], in[2 * k + 1] - in[2 * k]);
    }
    Floats out(2 * room, 99.0f);
    desktop::JoinPairs(even.data(), odd.data(), difference.data(), pairs, out.data());
    for (size_t k = 0; k < pairs; ++k) {
      ASSERT_EQ(out[2 * k], even[k] + odd[k]);
      ASSERT_EQ(out[2 * k + 1], even[k] + odd[k + 1] + difference[k]);
    }
    for (size_t i = 2 * pairs; i < out.size(); ++i) ASSERT_EQ(out[i], 99.0f);
  }
}

INSTANTIATE_TEST_SUITE_P(, FastFir, EveryVectorTarget(), VectorTargetName);

}  // namespace
