#include "harness/sample_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/allocation_count.h"

namespace {

// The rule, by 64-bit integers and remainders.
short Expected(float value) {
  if (!(value >= -2147483648.0f && value < 2147483648.0f)) return 0;
  int64_t low = static_cast<int64_t>(std::trunc(value)) % 65536;
  if (low < -32768) low += 65536;
  if (low > 32767) low -= 65536;
  return static_cast<short>(low);
}

void ExpectConverted(const std::vector<float>& in) {
  std::vector<short> out(in.size());
  ConvertToShortForWebrtc(in.data(), out.data(), static_cast<int>(in.size()));
  for (size_t i = 0; i < in.size(); ++i) {
    ASSERT_EQ(out[i], Expected(in[i])) << in[i] << ", bits " << std::bit_cast<uint32_t>(in[i]);
  }
}

TEST(SampleConversion, KeepsEveryShortAsAFloat) {
  std::vector<short> in;
  for (int value = -32768; value <= 32767; ++value) in.push_back(static_cast<short>(value));
  std::vector<float> floats(in.size());
  ConvertToFloatForWebrtc(in.data(), floats.data(), static_cast<int>(in.size()));
  for (size_t i = 0; i < in.size(); ++i) ASSERT_EQ(floats[i], in[i]);

  std::vector<short> back(in.size());
  ConvertToShortForWebrtc(floats.data(), back.data(), static_cast<int>(in.size()));
  EXPECT_EQ(back, in);
}

TEST(SampleConversion, TruncatesAndKeepsTheLowBits) {
  const float values[] = {40000.7f, -0.9f, -1.5f,  1.5f,     32767.9f,   32768, -32768.9f,
                          -32769,   65536, -65536, 65537.5f, 2147483520, 98303, -40000.7f,
                          0,        -0.0f, 1e-40f, -1e-40f,  0.9999999f, 32767, -32768};
  const short expected[] = {-25536, 0,     -1,    1, 32767, -32768, -32768, 32767, 0,     0,     1,
                            -128,   32767, 25536, 0, 0,     0,      0,      0,     32767, -32768};
  static_assert(std::size(values) == std::size(expected));
  for (size_t i = 0; i < std::size(values); ++i) {
    // In a run that the compiler may vectorise, and alone.
    const std::vector<float> in(64, values[i]);
    for (const int count : {64, 1}) {
      std::vector<short> out(64);
      ConvertToShortForWebrtc(in.data(), out.data(), count);
      EXPECT_EQ(out[0], expected[i]) << values[i];
      EXPECT_EQ(Expected(values[i]), expected[i]) << values[i];
    }
  }
}

TEST(SampleConversion, MakesZeroOfWhatNoIntegerHolds) {
  using Limits = std::numeric_limits<float>;
  const float values[] = {2147483648.0f,
                          -2147483648.0f,
                          -2147483904.0f,
                          4294967296.0f,
                          4294967296.0f * 3,
                          1e20f,
                          -1e20f,
                          Limits::max(),
                          Limits::lowest(),
                          Limits::infinity(),
                          -Limits::infinity(),
                          std::nanf(""),
                          -std::nanf(""),
                          std::bit_cast<float>(0x7f800001u),
                          std::bit_cast<float>(0xffc01234u)};
  for (const float value : values) {
    const std::vector<float> in(64, value);
    for (const int count : {64, 1}) {
      std::vector<short> out(64, 77);
      ConvertToShortForWebrtc(in.data(), out.data(), count);
      EXPECT_EQ(out[0], 0) << value;
    }
  }
}

TEST(SampleConversion, FollowsTheRuleForRandomBits) {
  std::mt19937 random(1);
  std::vector<float> in(1 << 20);
  for (int round = 0; round < 4; ++round) {
    for (float& value : in) value = std::bit_cast<float>(static_cast<uint32_t>(random()));
    ExpectConverted(in);
  }
  std::uniform_real_distribution<float> audible(-200000, 200000);
  for (float& value : in) value = audible(random);
  ExpectConverted(in);
}

// Around every power of two, where the exponent decides which bits are kept.
TEST(SampleConversion, FollowsTheRuleAroundPowersOfTwo) {
  std::vector<float> in;
  for (int exponent = -3; exponent <= 40; ++exponent) {
    const float power = std::ldexp(1.0f, exponent);
    for (int step = -40; step <= 40; ++step) {
      in.push_back(
          std::bit_cast<float>(std::bit_cast<uint32_t>(power) + static_cast<uint32_t>(step)));
      in.push_back(-in.back());
      in.push_back(power + static_cast<float>(step) * 0.5f);
    }
  }
  ExpectConverted(in);
}

TEST(SampleConversion, ConvertsAsManyAsAskedForAtAnyPlace) {
  std::vector<short> shorts(200);
  for (size_t i = 0; i < shorts.size(); ++i) shorts[i] = static_cast<short>(100 * i + 1);
  const std::vector<float> floats(shorts.begin(), shorts.end());
  for (size_t count = 0; count <= 100; ++count) {
    for (size_t from = 0; from < 20; ++from) {
      for (size_t to = 0; to < 35; ++to) {
        std::vector<short> shortOut(200, -7), shortExpected(200, -7);
        std::copy_n(&shorts[from], count, &shortExpected[to]);
        ConvertToShortForWebrtc(&floats[from], &shortOut[to], static_cast<int>(count));
        ASSERT_EQ(shortOut, shortExpected) << count << " from " << from << " to " << to;

        std::vector<float> floatOut(200, -7), floatExpected(200, -7);
        std::copy_n(&floats[from], count, &floatExpected[to]);
        ConvertToFloatForWebrtc(&shorts[from], &floatOut[to], static_cast<int>(count));
        ASSERT_EQ(floatOut, floatExpected) << count << " from " << from << " to " << to;
      }
    }
  }
}

TEST(SampleConversion, ConvertsMinutes) {
  constexpr size_t kCount = (5 << 20) + 13;
  std::mt19937 random(2);
  std::vector<short> in(kCount);
  for (short& value : in) value = static_cast<short>(random());
  std::vector<float> floats(kCount + 1, -7.0f);
  ConvertToFloatForWebrtc(in.data(), floats.data(), kCount);
  EXPECT_TRUE(std::equal(in.begin(), in.end(), floats.begin()));
  EXPECT_EQ(floats.back(), -7.0f);

  std::vector<short> back(kCount);
  ConvertToShortForWebrtc(floats.data(), back.data(), kCount);
  EXPECT_EQ(back, in);
}

TEST(SampleConversion, DoesNothingForACountThatIsNotPositive) {
  short shorts[] = {7};
  float floats[] = {8};
  for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
    ConvertToFloatForWebrtc(shorts, floats, count);
    ConvertToShortForWebrtc(floats, shorts, count);
  }
  EXPECT_EQ(shorts[0], 7);
  EXPECT_EQ(floats[0], 8.0F);
}

TEST(SampleConversion, AllocatesNothing) {
  const std::vector<short> in(4096, 3);
  std::vector<float> floats(in.size());
  std::vector<short> out(in.size());
  const size_t before = AllocationCount();
  ConvertToFloatForWebrtc(in.data(), floats.data(), 4096);
  ConvertToShortForWebrtc(floats.data(), out.data(), 4096);
  EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
