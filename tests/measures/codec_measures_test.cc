#include <gmock/gmock.h>

#include <string_view>
#include <vector>

#include "audio_measures/bit_rate.h"
#include "audio_measures/compute.h"
#include "audio_measures/length_factor.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 16000;

std::vector<NamedFigure> Of(const Inputs& inputs, std::string_view name) {
  return Compute(inputs, std::vector<std::string_view>{name});
}

TEST(BitRate, IsAllBitsOverTheTimeOfOneChannel) {
  EXPECT_DOUBLE_EQ(*BitRate(4000, 32000, 16000).value, 16000);
  EXPECT_DOUBLE_EQ(*BitRate(0, 32000, 16000).value, 0);
  EXPECT_FALSE(BitRate(4000, 0, 16000).value);
  const std::vector<float> second(kRate, 0.1F);
  const Inputs inputs = {
      .output = {kRate, {second, second}}, .codedBytes = 8000, .codedFrames = 50};
  const std::vector<NamedFigure> figures = Of(inputs, "bit_rate");
  ASSERT_EQ(figures.size(), 1U);
  EXPECT_FALSE(figures[0].channel);
  EXPECT_DOUBLE_EQ(*figures[0].figure.value, 64000);
  EXPECT_DOUBLE_EQ(*Of(inputs, "frames")[0].figure.value, 50);
}

TEST(BitRate, IsNotMadeUpWhereNobodyCounted) {
  const std::vector<float> second(kRate, 0.1F);
  const Inputs inputs = {.output = {kRate, {second}}};
  EXPECT_STREQ(Of(inputs, "bit_rate")[0].figure.reason, "no coded stream");
  EXPECT_STREQ(Of(inputs, "frames")[0].figure.reason, "no count of coded frames");
  EXPECT_STREQ(Of(inputs, "beat_f")[0].figure.reason, "no lists of beats");
}

// The second channel is 3.25 samples later than the first.
TEST(CodecDelay, IsHowMuchLaterEachChannelIsThanTheInput) {
  const std::vector<float> input = Between(size_t{3} * kRate, 0.1, 1, 0);
  const std::vector<float> left = Between(size_t{3} * kRate, 0.1, 1, 104.5);
  const std::vector<float> right = Between(size_t{3} * kRate, 0.1, 1, 107.75);
  const Inputs inputs = {.output = {kRate, {left, right}}, .input = {kRate, {input}}};
  const std::vector<NamedFigure> figures = Of(inputs, "codec_delay");
  ASSERT_EQ(figures.size(), 3U);
  EXPECT_NEAR(*figures[0].figure.value, 104.5 / kRate, 0.01 / kRate);
  EXPECT_NEAR(*figures[1].figure.value, 107.75 / kRate, 0.01 / kRate);
  EXPECT_NEAR(*figures[2].figure.value, 106.125 / kRate, 0.01 / kRate);
}

TEST(LengthFactor, IsTheOutputOverTheInput) {
  EXPECT_DOUBLE_EQ(*LengthFactor(1000, 1500).value, 1.5);
  EXPECT_DOUBLE_EQ(*LengthFactor(1500, 1000).value, 2.0 / 3);
  EXPECT_FALSE(LengthFactor(0, 1000).value);
  EXPECT_FALSE(LengthFactor(1000, 0).value);
  const std::vector<float> longer(3000, 0.1F);
  const std::vector<float> shorter(2000, 0.1F);
  const std::vector<NamedFigure> figures =
      Of({.output = {kRate, {longer, longer}}, .input = {kRate, {shorter}}}, "length_factor");
  ASSERT_EQ(figures.size(), 1U);
  EXPECT_DOUBLE_EQ(*figures[0].figure.value, 1.5);
}

}  // namespace
}  // namespace audio_measures
