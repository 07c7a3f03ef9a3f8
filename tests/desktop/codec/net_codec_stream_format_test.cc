#include "engine_api/codec/net_codec_stream_format.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using ZUAudio::NetCodecStreamFormat;

// Both records are laid out without gaps: 13 values of 32 bits, and 27 records of them.
static_assert(sizeof(StreamFormat) == 52);
static_assert(sizeof(NetCodecStreamFormat) == 1404);
static_assert(offsetof(StreamFormat, iAudioFormat) == 4);
static_assert(offsetof(NetCodecStreamFormat, iNetAACSTDFormat) == 18 * 52);

constexpr std::nullopt_t kNone = std::nullopt;

struct Record {
  const char* name;
  // iType, then the fields of AudioStreamFormat in their order; none where nothing is assigned.
  std::optional<int> values[13];
};

const Record kRecords[] = {
    {"iNetAACPlusFormat", {1, 16, 0, 44100, 2, 16, 24000, 2048, 29, 0, 0, 2, 1}},
    {"iNetAACLC128KMONOFormat", {1, 64, 0, 44100, 1, 16, 128000, 1024, 2, 0, 0, 1, 53}},
    {"iNetAAC128KFormat", {1, 64, 0, 44100, 2, 16, 128000, 1024, 5, 0, 0, 1, 35}},
    {"iNetAAC160KFormat", {1, 64, 0, 44100, 2, 16, kNone, 1024, 5, 0, 0, 1, 36}},
    {"iNetAAC192KFormat", {1, 512, 0, 44100, 2, 16, 192000, 1024, 5, 0, 0, 1, 37}},
    {"iNetAACEldFormat", {1, 256, 0, 44100, 2, 16, kNone, 1024, 5, 0, 0, 1, 38}},
    {"iNetAACEldSbrFormat", {1, 256, 0, 44100, 2, 16, kNone, 512, 5, 72000, 0, 1, 39}},
    {"iNetAACEld32KhzMonoFromat", {1, 256, 0, 32000, 1, 16, kNone, 512, 6, 0, 0, 1, 44}},
    {"iNetAACEld16KhzMonoFromat", {1, 256, 0, 16000, 1, 16, kNone, 512, 7, 0, 0, 1, 43}},
    {"iNetAMRWBFormat", {1, 2, 0, 16000, 1, 16, kNone, 320, 0, 5, 41, 4, 3}},
    {"iNetSilk16KFormat", {1, 4, 0, 16000, 1, 16, kNone, 320, 0, 5, 0, 1, 2}},
    {"iNetSilk24KFormat", {1, 4, 0, 24000, 1, 16, kNone, 480, 0, 8, 0, 4, 22}},
    {"iNetSpeexMode8Format", {1, 1, 0, 8000, 1, 16, kNone, 160, 0, 8, 38, 4, 0}},
    {"iNetSpeexMode4Format", {1, 1, 0, 8000, 1, 16, kNone, 160, 0, 4, 20, 4, 21}},
    {"iNetSpeexMode2Format", {1, 1, 0, 8000, 1, 16, kNone, 160, 0, 2, 15, 4, 23}},
    {"iNetAAC44KMonoFormat", {1, 64, 0, 44100, 1, 16, kNone, 1024, 5, 0, 0, 1, 41}},
    {"iNetAAC48KStereoFormat", {1, 64, 0, 48000, 2, 16, 40000, 1024, 5, 0, 0, 1, 40}},
    {"iNetAAC48KMonoFromat", {1, 64, 0, 48000, 1, 16, 40000, 1024, 5, 0, 0, 1, 42}},
    {"iNetAACSTDFormat", {}},
    {"iNetOPUS16KFormat", {1, 128, 0, 16000, 1, 16, 18000, 320, 5, 0, 0, 1, 50}},
    {"iNetOPUS48KFormat", {1, 128, 0, 48000, 1, 16, 48000, 960, 5, 0, 0, 1, 51}},
    {"iNetOPUSCommonFormat", {1, 128, 0, 48000, 2, 16, 64000, 960, 5, 0, 0, 1, 52}},
    {"iNetOPUSCommonV2Format", {1, 1024, 0, 48000, 2, 16, 64000, 960, 5, 0, 0, 1, 54}},
    {"iNetAAC64KMonoFormat", {1, 64, 0, 44100, 1, 16, 64000, 1024, 5, 0, 0, 1, 45}},
    {"iNetPcmFormat", {1, 32, 0, 44100, 2, 16, kNone, 2048, 0, 0, 0, 1, -1}},
    {"iNetAAC48KHev1Format", {1, 16, 0, 44100, 2, 16, 48000, 2048, 5, 0, 0, 2, 46}},
    {"iNetAACUniversalFormat", {1, 2048, 0, 44100, 2, 16, 24000, 2048, 29, 0, 0, 1, 55}},
};

constexpr size_t kTableValues = sizeof(NetCodecStreamFormat) / sizeof(int);

// The values of a table constructed in memory whose every byte was `pattern`.
std::vector<int> Construct(unsigned char pattern) {
  alignas(NetCodecStreamFormat) unsigned char memory[sizeof(NetCodecStreamFormat)];
  memset(memory, pattern, sizeof(memory));
  new (memory) NetCodecStreamFormat;
  std::vector<int> values(kTableValues);
  memcpy(values.data(), memory, sizeof(memory));
  return values;
}

class NetCodecStreamFormatTest : public testing::TestWithParam<unsigned char> {
 protected:
  const int kUntouched = static_cast<int>(GetParam() * 0x01010101U);
};

TEST_P(NetCodecStreamFormatTest, AssignsExactlyTheFixedValues) {
  const std::vector<int> values = Construct(GetParam());
  ASSERT_EQ(std::size(kRecords) * 13, values.size());
  for (size_t record = 0; record < std::size(kRecords); ++record) {
    for (size_t field = 0; field < 13; ++field) {
      EXPECT_EQ(values[record * 13 + field], kRecords[record].values[field].value_or(kUntouched))
          << kRecords[record].name << ", field " << field;
    }
  }
}

TEST_P(NetCodecStreamFormatTest, LeavesThirteenBitRatesAndOneRecord) {
  const std::vector<int> values = Construct(GetParam());
  std::vector<std::string> untouched;
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i] == kUntouched) {
      untouched.push_back(kRecords[i / 13].name + std::string(i % 13 == 6 ? ".iBitRate" : ""));
    }
  }
  std::erase(untouched, "iNetAACSTDFormat");
  EXPECT_THAT(untouched,
              ElementsAre("iNetAAC160KFormat.iBitRate", "iNetAACEldFormat.iBitRate",
                          "iNetAACEldSbrFormat.iBitRate", "iNetAACEld32KhzMonoFromat.iBitRate",
                          "iNetAACEld16KhzMonoFromat.iBitRate", "iNetAMRWBFormat.iBitRate",
                          "iNetSilk16KFormat.iBitRate", "iNetSilk24KFormat.iBitRate",
                          "iNetSpeexMode8Format.iBitRate", "iNetSpeexMode4Format.iBitRate",
                          "iNetSpeexMode2Format.iBitRate", "iNetAAC44KMonoFormat.iBitRate",
                          "iNetAACSTDFormat.iBitRate", "iNetPcmFormat.iBitRate"));
}

INSTANTIATE_TEST_SUITE_P(Patterns, NetCodecStreamFormatTest, testing::Values(0x5A, 0xC3));

TEST(NetCodecStreamFormat, HasItsRecordsUnderTheirNames) {
  const NetCodecStreamFormat formats;
  EXPECT_EQ(formats.iNetAACPlusFormat.iAudioFormat.iRawCodecId, 1);
  EXPECT_EQ(formats.iNetAACLC128KMONOFormat.iAudioFormat.iRawCodecId, 53);
  EXPECT_EQ(formats.iNetAACEldSbrFormat.iAudioFormat.iQuality, 72000);
  EXPECT_EQ(formats.iNetAACEld16KhzMonoFromat.iAudioFormat.iSampleRate, 16000);
  EXPECT_EQ(formats.iNetAMRWBFormat.iAudioFormat.iBytesOfCodedFrame, 41);
  EXPECT_EQ(formats.iNetAAC48KMonoFromat.iAudioFormat.iBitRate, 40000);
  EXPECT_EQ(formats.iNetPcmFormat.iAudioFormat.iRawCodecId, -1);
  EXPECT_EQ(formats.iNetAACUniversalFormat.iAudioFormat.iCodec, kAudioCodecAACUni);
}

}  // namespace
