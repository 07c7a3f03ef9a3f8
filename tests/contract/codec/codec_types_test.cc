// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

#include "engine_api/codec/audio_codec.h"
#include "engine_api/codec/audio_processor.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/codec/local_codec.h"
#include "engine_api/codec/net_codec_stream_format.h"
#include "engine_api/codec/stream_format.h"
#include "engine_api/codec/stream_to_aac.h"
#include "engine_api/codec/two_byte_header.h"
#include "fake_engine/fake_engine.h"
#include "support/slot.h"

using AudioLocalCodec::IAudioDecoder;
using AudioLocalCodec::IAudioEncoder;

static_assert(kAudioCodecUnknown == 0 && kAudioCodecSpeex == 1 && kAudioCodecAMRWB == 2 &&
              kAudioCodecSilk == 4 && kAudioCodecMP3 == 8 && kAudioCodecAAC == 16 &&
              kAudioCodecPCM == 32 && kAudioCodecAACHIGH == 64 && kAudioCodecOPUS == 128 &&
              kAudioCodecEldAAC == 256 && kAudioCodecAACCommon == 512 &&
              kAudioCodecOpusCommon == 1024 && kAudioCodecAACUni == 2048);

static_assert(kStreamTypeUnknown == 0 && kStreamTypeAudio == 1 && kStreamTypeVideo == 2);

static_assert(sizeof(AudioStreamFormat) == 12 * 4 && sizeof(StreamFormat) == 13 * 4);

static_assert(std::is_trivially_default_constructible_v<StreamFormat>);  // Gaps stay gaps.

static_assert(sizeof(ZUAudio::NetCodecStreamFormat) == 27 * sizeof(StreamFormat));

static_assert(AudioLocalCodec::UNKNOWN_CODEC == -1 && AudioLocalCodec::SPEEX_CODEC_8 == 0 &&
              AudioLocalCodec::AAC_PLUS_CODEC == 1 && AudioLocalCodec::SILK_CODEC == 2 &&
              AudioLocalCodec::AAC_ELD_CODEC == 4 && AudioLocalCodec::SPEEX_CODEC_4 == 21 &&
              AudioLocalCodec::SPEEX_CODEC_2 == 23 && AudioLocalCodec::AAC_LC_CODEC == 35 &&
              AudioLocalCodec::AAC_AUDIT_CODEC == 36 && AudioLocalCodec::WAV_CODEC == 255);

static_assert(kAudioLibraryDecoder == 0 && kAudioLibraryEncoder == 1);

static_assert(std::is_same_v<decltype(FormatFromRawCodecId), AudioStreamFormat(int)>);

static_assert(
    std::is_same_v<decltype(CreateAudioCodec), CAudioCodec*(ZUAudioCodec, AudioLibraryCodecMode)>);

static_assert(std::has_virtual_destructor_v<CAudioCodec> && std::is_abstract_v<CAudioCodec>);

static_assert(std::is_same_v<decltype(TransZUStreamToAAC), int(const char*, int, unsigned char**)>);

static_assert(std::is_same_v<decltype(ParseTwoByteHeader), int(unsigned short)>);

static_assert(
    std::is_same_v<decltype(&AudioProcessor::ProcessData),
                   void (AudioProcessor::*)(const void*, uint32_t*, void*, uint32_t*, int, int)>);

TEST(CodecInterfaces, KeepTheirSlotsInOrder) {
  EXPECT_EQ(Slot(&CAudioCodec::Init), 2U);
  EXPECT_EQ(Slot(&CAudioCodec::CalcBufSize), 3U);
  EXPECT_EQ(Slot(&CAudioCodec::Process), 4U);
  EXPECT_EQ(Slot(&CAudioCodec::GetAncData), 5U);
  EXPECT_EQ(Slot(&CAudioCodec::CodecMode), 6U);
  EXPECT_EQ(Slot(&CAudioCodec::CodecID), 7U);
  EXPECT_EQ(Slot(&CAudioCodec::CodecLevel), 8U);
  EXPECT_EQ(Slot(&CAudioCodec::DeInit), 9U);
  EXPECT_EQ(Slot(&CAudioCodec::CodecDescribe), 10U);
  EXPECT_EQ(Slot(&CAudioCodec::IsAvailable), 11U);
  EXPECT_EQ(Slot(&CAudioCodec::CodecDelay), 12U);
  EXPECT_EQ(Slot(&CAudioCodec::GetEncoderSize), 13U);
  EXPECT_EQ(Slot(&CAudioCodec::GetDecodedSampleRate), 14U);
  EXPECT_EQ(Slot(&CAudioCodec::GetDecodedChannel), 15U);
  EXPECT_EQ(Slot(&IAudioEncoder::Destroy), 2U);
  EXPECT_EQ(Slot(&IAudioEncoder::GetEncoderBytes), 3U);
  EXPECT_EQ(Slot(&IAudioEncoder::Init), 4U);
  EXPECT_EQ(Slot(&IAudioEncoder::Uninit), 5U);
  EXPECT_EQ(Slot(&IAudioEncoder::Flush), 6U);
  EXPECT_EQ(Slot(&IAudioEncoder::Encode), 7U);
  EXPECT_EQ(Slot(&IAudioEncoder::EncodeLoss), 8U);
  EXPECT_EQ(Slot(&IAudioEncoder::SetBitRate), 9U);
  EXPECT_EQ(Slot(&IAudioEncoder::SetComplexity), 10U);
  EXPECT_EQ(Slot(&IAudioDecoder::Destroy), 2U);
  EXPECT_EQ(Slot(&IAudioDecoder::Init), 3U);
  EXPECT_EQ(Slot(&IAudioDecoder::Uninit), 4U);
  EXPECT_EQ(Slot(&IAudioDecoder::Flush), 5U);
  EXPECT_EQ(Slot(&IAudioDecoder::Decode), 6U);
  EXPECT_EQ(Slot(&IAudioDecoder::DecodeLoss), 7U);
  EXPECT_EQ(Slot(&AudioProcessor::ProcessData), 2U);
}

// The records in their order; each follows the one before it without a gap.
TEST(NetCodecStreamFormat, KeepsTheNamesAndOrderOfItsRecords) {
  using Table = ZUAudio::NetCodecStreamFormat;
  StreamFormat Table::*const records[] = {
      &Table::iNetAACPlusFormat,
      &Table::iNetAACLC128KMONOFormat,
      &Table::iNetAAC128KFormat,
      &Table::iNetAAC160KFormat,
      &Table::iNetAAC192KFormat,
      &Table::iNetAACEldFormat,
      &Table::iNetAACEldSbrFormat,
      &Table::iNetAACEld32KhzMonoFromat,
      &Table::iNetAACEld16KhzMonoFromat,
      &Table::iNetAMRWBFormat,
      &Table::iNetSilk16KFormat,
      &Table::iNetSilk24KFormat,
      &Table::iNetSpeexMode8Format,
      &Table::iNetSpeexMode4Format,
      &Table::iNetSpeexMode2Format,
      &Table::iNetAAC44KMonoFormat,
      &Table::iNetAAC48KStereoFormat,
      &Table::iNetAAC48KMonoFromat,
      &Table::iNetAACSTDFormat,
      &Table::iNetOPUS16KFormat,
      &Table::iNetOPUS48KFormat,
      &Table::iNetOPUSCommonFormat,
      &Table::iNetOPUSCommonV2Format,
      &Table::iNetAAC64KMonoFormat,
      &Table::iNetPcmFormat,
      &Table::iNetAAC48KHev1Format,
      &Table::iNetAACUniversalFormat,
  };
  ASSERT_EQ(std::size(records), 27U);
  FakeEngine engine;
  const auto table = std::make_unique<Table>();
  for (size_t i = 0; i < std::size(records); ++i) {
    EXPECT_EQ(&(table.get()->*records[i]), &table->iNetAACPlusFormat + i) << i;
  }
}

TEST(AudioStreamFormat, KeepsTheOrderOfItsFields) {
  const AudioStreamFormat format = {kAudioCodecAAC, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  EXPECT_EQ(format.iCodec, kAudioCodecAAC);
  EXPECT_EQ(format.iFlag, 1);
  EXPECT_EQ(format.iSampleRate, 2);
  EXPECT_EQ(format.iNumOfChannels, 3);
  EXPECT_EQ(format.iBitsOfSample, 4);
  EXPECT_EQ(format.iBitRate, 5);
  EXPECT_EQ(format.iSamplesOfFrame, 6);
  EXPECT_EQ(format.iProfile, 7);
  EXPECT_EQ(format.iQuality, 8);
  EXPECT_EQ(format.iBytesOfCodedFrame, 9);
  EXPECT_EQ(format.iNumOfFramesInPacket, 10);
  EXPECT_EQ(format.iRawCodecId, 11);
}
