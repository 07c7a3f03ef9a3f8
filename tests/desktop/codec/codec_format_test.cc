#include "engine_api/codec/codec_format.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <map>

#include "engine_api/codec/two_byte_header.h"

namespace {

TEST(FormatFromRawCodecId, FillsTheRecordOfEveryId) {
  const std::map<int, int> bitRates = {
      {0, 15200},   {1, 24000},   {2, 18000},   {3, 15850},  {21, 8000},   {22, 24000}, {23, 5950},
      {35, 128000}, {36, 160000}, {37, 192000}, {38, 64000}, {39, 72000},  {40, 40000}, {41, 64000},
      {42, 40000},  {43, 32000},  {44, 48000},  {45, 64000}, {46, 48000},  {50, 18000}, {51, 48000},
      {52, 64000},  {53, 128000}, {54, 64000},  {55, 24000}, {-1, 1411200}};
  int known = 0;
  for (int id = -100; id <= 300; ++id) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    if (bitRates.count(id) == 0) {
      EXPECT_EQ(format.iCodec, kAudioCodecUnknown) << id;
      continue;
    }
    ++known;
    EXPECT_EQ(format.iRawCodecId, id);
    EXPECT_EQ(format.iBitRate, bitRates.at(id)) << id;
    EXPECT_EQ(format.iBitsOfSample, 16);
    EXPECT_GT(format.iSampleRate, 0);
  }
  EXPECT_EQ(known, 26);
}

TEST(FormatFromRawCodecId, GivesTheFieldsOfTheTable) {
  const AudioStreamFormat format = FormatFromRawCodecId(22);
  EXPECT_EQ(format.iCodec, kAudioCodecSilk);
  EXPECT_EQ(format.iFlag, 0);
  EXPECT_EQ(format.iSampleRate, 24000);
  EXPECT_EQ(format.iNumOfChannels, 1);
  EXPECT_EQ(format.iSamplesOfFrame, 480);
  EXPECT_EQ(format.iProfile, 0);
  EXPECT_EQ(format.iQuality, 8);
  EXPECT_EQ(format.iBytesOfCodedFrame, 0);
  EXPECT_EQ(format.iNumOfFramesInPacket, 4);
}

// Deliberate: a quality of 72000. "Fixed", the record would differ from the table's.
TEST(FormatFromRawCodecId, KeepsTheQualityOfId39) {
  EXPECT_EQ(FormatFromRawCodecId(39).iQuality, 72000);
  EXPECT_EQ(FormatFromRawCodecId(37).iCodec, kAudioCodecAACCommon);
}

TEST(FormatFromRawCodecId, IsAllZerosForAnUnknownId) {
  for (const int id : {-2, 4, 20, 47, 56, INT_MAX, INT_MIN}) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const AudioStreamFormat zeros = {};
    EXPECT_EQ(memcmp(&format, &zeros, sizeof(format)), 0) << id;
  }
}

TEST(ParseTwoByteHeader, WantsAllSixBitsOfTheMark) {
  for (int word = 0; word <= 0xffff; ++word) {
    const int expected = word >= 0xfc00 ? word - 0xfc00 + 2 : 0;
    ASSERT_EQ(ParseTwoByteHeader(static_cast<unsigned short>(word)), expected);
  }
}

}  // namespace
