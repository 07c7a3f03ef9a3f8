#include "desktop/codec/parts/adts_converter.h"

#include <gmock/gmock.h>

#include <climits>
#include <cstdlib>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/parts/malloc_bytes.h"
#include "engine_api/codec/codec_format.h"
#include "support/captured_stderr.h"

namespace desktop {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

std::string Converted(const std::string& stream, size_t maxBytes) {
  unsigned char other = 0;
  unsigned char* out = &other;
  const int bytes = ConvertToAdts(reinterpret_cast<const unsigned char*>(stream.data()),
                                  stream.size(), maxBytes, &out);
  EXPECT_EQ(out == nullptr, bytes == 0);
  std::string aac(reinterpret_cast<const char*>(out), static_cast<size_t>(bytes));
  free(out);
  return aac;
}

std::string StreamOf(int id) {
  const AudioStreamFormat format = FormatFromRawCodecId(id);
  std::string stream;
  for (const std::string& packet : Encode(*OpenCodec(id, kAudioLibraryEncoder),
                                          Voice(format.iSampleRate, format.iNumOfChannels, 0.5),
                                          format.iSamplesOfFrame * format.iNumOfChannels)) {
    stream += packet;
  }
  return stream;
}

// Where each ADTS packet ends.
std::vector<size_t> Ends(const std::string& adts) {
  std::vector<size_t> ends;
  for (size_t at = 0; at + 7 <= adts.size(); ends.push_back(at)) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(adts[at + i]); };
    at += static_cast<size_t>((byte(3) & 3) << 11 | byte(4) << 3 | byte(5) >> 5);
  }
  return ends;
}

// By id: copied, with new headers, decoded and coded.
class ConvertToAdtsOf : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(RawIds, ConvertToAdtsOf, testing::Values(1, 35, 2),
                         [](auto& info) { return "Id" + std::to_string(info.param); });

TEST_P(ConvertToAdtsOf, GivesTheWholePacketsThatFit) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  const std::string stream = StreamOf(GetParam());
  const CapturedStderr quiet;
  const std::string whole = Converted(stream, INT_MAX);
  EXPECT_EQ(Converted(stream, whole.size()), whole);
  EXPECT_EQ(quiet.Text(), "");

  const std::vector<size_t> ends = Ends(whole);
  ASSERT_GT(ends.size(), 4U);
  size_t before = 0;
  for (const size_t end : ends) {
    const CapturedStderr log;
    EXPECT_EQ(Converted(stream, end - 1), whole.substr(0, before)) << end;
    EXPECT_THAT(log.Lines(), SizeIs(1)) << log.Text();
    EXPECT_THAT(log.Text(), HasSubstr("first " + std::to_string(before) + " bytes"));
    before = end;
  }
}

TEST(ConvertToAdts, GivesNothingOfNothing) {
  const CapturedStderr log;
  EXPECT_EQ(Converted("", INT_MAX), "");
  unsigned char other = 0;
  unsigned char* out = &other;
  EXPECT_EQ(ConvertToAdts(nullptr, 5, INT_MAX, &out), 0);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(log.Text(), "");
}

TEST(MallocBytes, MovesRarelyHoweverSmallThePartsAre) {
  MallocBytes bytes(1000000);
  size_t moves = 0;
  size_t capacity = 0;
  const unsigned char byte = 7;
  while (bytes.Append(&byte, 1)) {
    if (bytes.capacity() != capacity) ++moves;
    capacity = bytes.capacity();
  }
  EXPECT_TRUE(bytes.IsFull());
  EXPECT_EQ(bytes.size(), 1000000U);
  EXPECT_EQ(capacity, 1000000U) << "no more than can be filled";
  EXPECT_LE(moves, 21U);
}

TEST(MallocBytes, TellsThatThereIsNoMemory) {
  MallocBytes bytes(SIZE_MAX);
  EXPECT_TRUE(bytes.Append(reinterpret_cast<const unsigned char*>("abc"), 3));
  // Refused before anything is read.
  EXPECT_FALSE(bytes.Append(nullptr, SIZE_MAX / 2));
  EXPECT_TRUE(bytes.IsOutOfMemory());
  EXPECT_FALSE(bytes.IsFull());
  EXPECT_EQ(bytes.size(), 3U);
  unsigned char* const kept = bytes.Release();
  EXPECT_EQ(std::string(reinterpret_cast<char*>(kept), 3), "abc");
  free(kept);
  EXPECT_EQ(bytes.Release(), nullptr);
}

}  // namespace
}  // namespace desktop
