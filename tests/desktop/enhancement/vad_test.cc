#include "engine_api/enhancement/vad.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "engine_api/enhancement/signal_processing.h"
#include "support/captured_stderr.h"

namespace {

TEST(WebRtcVad, LivesAndDiesUnfed) {
  void* detector = nullptr;
  ASSERT_EQ(WebRtcVad_Create(&detector), 0);
  ASSERT_NE(detector, nullptr);
  EXPECT_EQ(WebRtcVad_set_mode(detector, 2), -1) << "before it is made ready";
  EXPECT_EQ(WebRtcVad_Init(detector), 0);
  for (int mode = 0; mode <= 3; ++mode) EXPECT_EQ(WebRtcVad_set_mode(detector, mode), 0);
  {
    CapturedStderr log;
    EXPECT_EQ(WebRtcVad_set_mode(detector, -1), -1);
    EXPECT_EQ(WebRtcVad_set_mode(detector, 4), -1);
    EXPECT_EQ(log.Lines().size(), 2u);
  }
  EXPECT_EQ(WebRtcVad_Init(detector), 0);
  EXPECT_EQ(WebRtcVad_Free(detector), 0);

  ASSERT_EQ(WebRtcVad_Create(&detector), 0);
  EXPECT_EQ(WebRtcVad_Free(detector), 0);
}

TEST(WebRtcVad, RefusesNullHandles) {
  EXPECT_EQ(WebRtcVad_Create(nullptr), -1);
  EXPECT_EQ(WebRtcVad_Init(nullptr), -1);
  EXPECT_EQ(WebRtcVad_set_mode(nullptr, 2), -1);
  EXPECT_EQ(WebRtcVad_Free(nullptr), -1);
}

TEST(WebRtcSpl, MemSetW16FillsSoManyAndNoMore) {
  std::vector<int16_t> samples(6, 1);
  WebRtcSpl_MemSetW16(samples.data() + 1, -7, 4);
  EXPECT_EQ(samples, (std::vector<int16_t>{1, -7, -7, -7, -7, 1}));
  WebRtcSpl_MemSetW16(samples.data(), 9, 0);
  EXPECT_EQ(samples.front(), 1);
  WebRtcSpl_MemSetW16(nullptr, 9, 0);
}

}  // namespace
