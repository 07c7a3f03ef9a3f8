#include <gmock/gmock.h>

#include <map>
#include <memory>

#include "bench/codec/routines.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::map<int, int>& Families() {
  static const std::map<int, int> families = {{1, 16},   {46, 16},  {2, 4},    {22, 4},   {35, 64},
                                              {36, 64},  {37, 64},  {40, 64},  {41, 64},  {42, 64},
                                              {45, 64},  {53, 64},  {38, 256}, {39, 256}, {43, 256},
                                              {44, 256}, {50, 128}, {51, 128}, {55, 2048}};
  return families;
}

// The calls for all ids around the table, and whether there was a codec for the right ones.
std::vector<std::string> CallsForEveryId(CAudioCodec* (*codecFor)(int)) {
  FakeEngine engine;
  for (int id = -5; id <= 70; ++id) {
    const std::unique_ptr<CAudioCodec> codec(codecFor(id));
    EXPECT_EQ(codec != nullptr, Families().count(id) == 1) << id;
  }
  return engine.calls;
}

std::vector<std::string> ExpectedCalls(int mode) {
  std::vector<std::string> calls;
  for (const auto& [id, family] : Families()) {
    const std::string codec = "CAudioCodec#" + std::to_string(calls.size() / 2 + 1);
    calls.push_back("CreateAudioCodec(" + std::to_string(family) + ", " + std::to_string(mode) +
                    ") = " + codec);
    calls.push_back("~" + codec);
  }
  return calls;
}

int Length(std::vector<unsigned char> header, int style) {
  return GetCodecFrameLength(header.data(), style);
}

}  // namespace

TEST(RawCodecId, MakesNineteenEncodersAndInitialisesNone) {
  EXPECT_THAT(ExpectedCalls(1), SizeIs(2 * 19));
  EXPECT_THAT(CallsForEveryId(encoderFromRawCodecId), Transcript(ExpectedCalls(1)));
}

TEST(RawCodecId, MakesNineteenDecodersAndInitialisesNone) {
  EXPECT_THAT(CallsForEveryId(decoderFromRawCodecId), Transcript(ExpectedCalls(0)));
}

TEST(RawCodecId, LogsAMissingEncoderOf55Alone) {
  FakeEngine engine;
  engine.script<AudioCodecScript>().isAvailable = [](auto, auto) { return false; };

  for (const auto& [id, family] : Families()) EXPECT_EQ(encoderFromRawCodecId(id), nullptr) << id;

  EXPECT_THAT(engine.CallsWith("CreateAudioCodec("), SizeIs(19));
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"),
              ElementsAre("OutputDebugInfo(\"Tavik CreateAudioCodec return null;\")"));
  EXPECT_EQ(engine.calls.back(), "OutputDebugInfo(\"Tavik CreateAudioCodec return null;\")");
}

TEST(RawCodecId, NeverLogsAMissingDecoder) {
  FakeEngine engine;
  engine.script<AudioCodecScript>().isAvailable = [](auto, auto) { return false; };

  for (const auto& [id, family] : Families()) EXPECT_EQ(decoderFromRawCodecId(id), nullptr) << id;

  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), IsEmpty());
}

TEST(RawCodecId, LogsNothingForIdsOutsideTheTable) {
  FakeEngine engine;

  for (const int id : {-1, 0, 3, 54, 56, 256 + 55, -2147483647 - 1}) {
    EXPECT_EQ(encoderFromRawCodecId(id), nullptr) << id;
  }

  EXPECT_THAT(engine.calls, IsEmpty());
}

TEST(GetCodecFrameLength, LeavesTheTwoHighBitsOfAnAdtsLengthOut) {
  EXPECT_EQ(Length({0xFF, 0xF1, 0x50, 0x00, 0xFF, 0xE0}, 7), 2047);
  EXPECT_EQ(Length({0, 0, 0, 0x03, 0x00, 0x00}, 7), 0);  // 6144 as 13 bits.
  EXPECT_EQ(Length({0, 0, 0, 0xFF, 0x01, 0x20}, 7), 9);
  EXPECT_EQ(Length({0, 0, 0, 0, 0x00, 0x1F}, 7), 0);  // The low bits are not the length's.
}

TEST(GetCodecFrameLength, ReadsEveryMarkedWord) {
  for (int word = 0; word <= 0xFFFF; ++word) {
    const std::vector<unsigned char> header = {static_cast<unsigned char>(word & 0xFF),
                                               static_cast<unsigned char>(word >> 8)};
    ASSERT_EQ(Length(header, 2), word >= 0xFC00 ? (word & 0x3FF) + 2 : 0) << word;
  }
  EXPECT_EQ(Length({0xFF, 0xFF}, 2), 1025);
  EXPECT_EQ(Length({0x00, 0xFC}, 2), 2);
  EXPECT_EQ(Length({0xFF, 0xFB}, 2), 0);
}

TEST(GetCodecFrameLength, ReadsAPrefixAsASignedNumber) {
  EXPECT_EQ(Length({0x10, 0x00, 0x00, 0x00}, 4), 16);
  EXPECT_EQ(Length({0x78, 0x56, 0x34, 0x12}, 4), 0x12345678);
  EXPECT_EQ(Length({0xFC, 0xFF, 0xFF, 0xFF}, 4), -4);
  EXPECT_EQ(Length({0x00, 0x00, 0x00, 0x80}, 4), -2147483647 - 1);
}

TEST(GetCodecFrameLength, DoesNotLookWhenTheStyleIsNone) {
  for (const int style : {3, 0, -1, 1, 5, 6, 8}) {
    EXPECT_EQ(GetCodecFrameLength(nullptr, style), 0) << style;
  }
}

// A sanitizer sees a read past these, which hold no byte more than the style needs.
TEST(GetCodecFrameLength, ReadsNoFurtherThanItsStyleNeeds) {
  for (const auto& [style, bytes] : {std::pair(7, 6), {2, 2}, {4, 4}}) {
    const auto header = std::make_unique<unsigned char[]>(static_cast<size_t>(bytes));
    EXPECT_EQ(GetCodecFrameLength(header.get(), style), 0) << style;
  }
}
