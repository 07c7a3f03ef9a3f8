#include "engine_api/common/audio_util.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(S16ToFloat, ScalesEverySampleExactly) {
  std::vector<short> in;
  for (int value = -32768; value <= 32767; ++value) in.push_back(static_cast<short>(value));
  std::vector<float> out(in.size());
  zuwebrtc::S16ToFloat(in.data(), static_cast<unsigned>(in.size()), out.data());
  for (size_t i = 0; i < in.size(); ++i) {
    ASSERT_EQ(static_cast<double>(out[i]), in[i] / 32768.0) << in[i];
  }
  EXPECT_EQ(out.front(), -1.0f);
}

TEST(S16ToFloat, ConvertsAsManyAsAskedFor) {
  const std::vector<short> in(100, 16384);
  for (unsigned count = 0; count <= 100; ++count) {
    std::vector<float> out(100, 9.0f);
    zuwebrtc::S16ToFloat(in.data(), count, out.data());
    std::vector<float> expected(100, 9.0f);
    for (unsigned i = 0; i < count; ++i) expected[i] = 0.5f;
    ASSERT_EQ(out, expected) << count;
  }
}

TEST(MixStereoToMono, AveragesBothChannels) {
  const float in[] = {1, 3, -1, 1, 0.25f, 0, -32768, -32768};
  float out[5] = {9, 9, 9, 9, 9};
  MixStereoToMono(in, out, 4);
  EXPECT_EQ(std::vector<float>(out, out + 5), (std::vector<float>{2, 0, 0.125f, -32768, 9}));
}

TEST(MixStereoToMono, MixesAsManyFramesAsAskedFor) {
  std::vector<float> in;
  for (int frame = 0; frame < 100; ++frame) {
    in.push_back(static_cast<float>(frame));
    in.push_back(static_cast<float>(3 * frame));
  }
  for (int frames = 0; frames <= 100; ++frames) {
    std::vector<float> out(100, -9.0f);
    MixStereoToMono(in.data(), out.data(), frames);
    std::vector<float> expected(100, -9.0f);
    for (int i = 0; i < frames; ++i) expected[static_cast<size_t>(i)] = static_cast<float>(2 * i);
    ASSERT_EQ(out, expected) << frames;
  }
}

}  // namespace
