#include "engine_api/codec/audio_codec.h"

#include <gmock/gmock.h>

#include <climits>
#include <cmath>
#include <numeric>

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/codec_format.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"

namespace {

using testing::Each;
using testing::IsEmpty;
using testing::Not;

struct Expected {
  int rawId;
  int lag;       // Samples per channel.
  double snrDb;  // At least. Parametric stereo keeps no waveform.
};

const Expected kExpected[] = {
    {1, 9154, 0.6},   {2, 104, 16.3},  {22, 155, 17.6},  {35, 3072, 30.1}, {36, 3072, 31.8},
    {37, 3072, 32.4}, {38, 579, 17.3}, {39, 256, 17.8},  {40, 3072, 14.1}, {41, 3072, 29.9},
    {42, 3072, 22.4}, {43, 256, 21},   {44, 256, 25.2},  {45, 3072, 29.9}, {46, 7105, 20.2},
    {50, 104, 16.3},  {51, 312, 21.7}, {53, 3072, 33.7}, {55, 9154, 0.6}};

bool HasAdts(int rawId) { return rawId == 1 || rawId == 46 || rawId == 55; }

class EachCodec : public testing::TestWithParam<Expected> {
 protected:
  void SetUp() override {
    m_encoder = OpenCodec(m_id, kAudioLibraryEncoder);
    m_decoder = OpenCodec(m_id, kAudioLibraryDecoder);
    if (NeedsAac(GetParam().rawId) && AUDIO_ENGINE_HAS_AAC == 0) {
      EXPECT_EQ(m_encoder, nullptr);
      EXPECT_EQ(m_decoder, nullptr);
      GTEST_SKIP() << "built without AAC";
    }
    ASSERT_NE(m_encoder, nullptr);
    ASSERT_NE(m_decoder, nullptr);
  }

  size_t BlockBytes() const { return 2 * static_cast<size_t>(FrameSamples(m_format)); }

  std::vector<std::string> EncodeVoice(double seconds) {
    return Encode(*m_encoder, Voice(m_format.iSampleRate, m_format.iNumOfChannels, seconds),
                  FrameSamples(m_format));
  }

  const int m_id = GetParam().rawId;
  const AudioStreamFormat m_format = FormatFromRawCodecId(m_id);
  std::unique_ptr<CAudioCodec> m_encoder;
  std::unique_ptr<CAudioCodec> m_decoder;
};

INSTANTIATE_TEST_SUITE_P(RawIds, EachCodec, testing::ValuesIn(kExpected),
                         [](auto& info) { return "Id" + std::to_string(info.param.rawId); });

TEST_P(EachCodec, BringsTheSignalBackAsLateAsItSays) {
  const int channels = m_format.iNumOfChannels;
  const Samples voice = Voice(m_format.iSampleRate, channels, 3);
  const std::vector<std::string> packets = Encode(*m_encoder, voice, FrameSamples(m_format));
  EXPECT_THAT(packets, Each(Not(IsEmpty())));
  const Samples decoded = Decode(*m_decoder, packets);
  EXPECT_EQ(decoded.size(), packets.size() * static_cast<size_t>(FrameSamples(m_format)));

  EXPECT_EQ(m_encoder->CodecDelay(), GetParam().lag);
  EXPECT_EQ(m_decoder->CodecDelay(), GetParam().lag);
  EXPECT_NEAR(BestLag(voice, decoded, channels, GetParam().lag), GetParam().lag, 1);
  const double snr = SnrDb(voice, decoded, channels, GetParam().lag);
  EXPECT_GE(snr, GetParam().snrDb);
}

TEST_P(EachCodec, KeepsTheBitRateOfItsFormat) {
  const std::vector<std::string> packets = EncodeVoice(4);
  const size_t bytes =
      std::accumulate(packets.begin(), packets.end(), size_t{0},
                      [](size_t sum, auto& packet) { return sum + packet.size(); });
  const double seconds =
      static_cast<double>(packets.size()) * m_format.iSamplesOfFrame / m_format.iSampleRate;
  const double rate = static_cast<double>(bytes) * 8 / seconds;
  EXPECT_LE(rate, 1.1 * m_format.iBitRate);
  // Opus takes less for a voice without consonants.
  const bool opus = m_format.iCodec == kAudioCodecOPUS || m_format.iCodec == kAudioCodecSilk;
  EXPECT_GE(rate, (opus ? 0.3 : 0.9) * m_format.iBitRate);
}

TEST_P(EachCodec, GivesTheSameBytesEveryTime) {
  const std::vector<std::string> first = EncodeVoice(1);
  m_encoder = OpenCodec(m_id, kAudioLibraryEncoder);
  EXPECT_EQ(EncodeVoice(1), first);
  const Samples decoded = Decode(*m_decoder, first);
  m_decoder = OpenCodec(m_id, kAudioLibraryDecoder);
  EXPECT_EQ(Decode(*m_decoder, first), decoded);
}

TEST_P(EachCodec, DelimitsEachPacketByItsHeader) {
  for (const std::string& packet : EncodeVoice(1)) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(packet[i]); };
    if (HasAdts(m_id)) {
      EXPECT_EQ(byte(0), 0xff);
      EXPECT_EQ(byte(1), 0xf1);
      // LC at 22050 Hz, one channel with parametric stereo, in one block of untold fullness.
      EXPECT_EQ(byte(2), 0x5c);
      EXPECT_EQ(byte(3), m_id == 46 ? 0x80 : 0x40);
      EXPECT_EQ(byte(4) << 3 | byte(5) >> 5, packet.size());
      EXPECT_EQ(byte(5) & 0x1f, 0x1f);
      EXPECT_EQ(byte(6), 0xfc);
    } else {
      EXPECT_EQ(byte(1) & 0xfc, 0xfc);
      EXPECT_EQ(((byte(0) | byte(1) << 8) & 0x3ff) + 2, packet.size());
      EXPECT_EQ(byte(2), m_id);
    }
  }
}

TEST_P(EachCodec, CollectsFramesFromInputOfAnyLength) {
  const Samples voice = Voice(m_format.iSampleRate, m_format.iNumOfChannels, 0.5);
  const std::vector<std::string> packets = Encode(*m_encoder, voice, FrameSamples(m_format));
  std::string expected;
  for (const std::string& packet : packets) expected += packet;

  for (const size_t count : {size_t{1001}, size_t{100000}}) {
    m_encoder = OpenCodec(m_id, kAudioLibraryEncoder);
    std::string bytes;
    const std::string in = BytesOf(voice);
    for (size_t at = 0; at < in.size(); at += count) {
      bytes += Process(*m_encoder, in.substr(at, count));
    }
    EXPECT_EQ(bytes, expected) << count;
  }
  // Several packets at once come back as several frames.
  EXPECT_EQ(Process(*m_decoder, packets[0] + packets[1]).size(), 2 * BlockBytes());
}

TEST_P(EachCodec, ProducesNothingWithoutRoom) {
  const CapturedStderr log;
  const Samples voice = Voice(m_format.iSampleRate, m_format.iNumOfChannels, 0.5);
  const Samples frame(voice.begin(), voice.begin() + FrameSamples(m_format));
  const std::string packet = Process(*m_encoder, BytesOf(frame));
  EXPECT_EQ(Process(*m_encoder, BytesOf(frame), 2), "");
  EXPECT_EQ(Process(*m_encoder, BytesOf(frame), 0), "");
  EXPECT_EQ(Process(*m_decoder, packet, 2 * FrameSamples(m_format) - 1), "");
  EXPECT_EQ(Process(*m_decoder, packet, 0), "");
  EXPECT_EQ(Process(*m_decoder, packet, 2 * FrameSamples(m_format)).size(), BlockBytes());
  // One an object, also for a further reason and after a new start.
  EXPECT_EQ(Process(*m_decoder, packet.substr(0, 5)), "");
  AudioStreamFormat format = m_format;
  EXPECT_TRUE(m_decoder->Init(&format));
  EXPECT_EQ(Process(*m_decoder, packet.substr(0, 5)), "");
  EXPECT_FALSE(m_decoder->Init(nullptr));
  EXPECT_EQ(log.Lines().size(), 2U) << log.Text();
}

TEST_P(EachCodec, RefusesAFrameOfAnotherId) {
  const CapturedStderr log;
  for (const CodecId& other : CodecIds()) {
    const auto encoder = OpenCodec(other.rawId, kAudioLibraryEncoder);
    const AudioStreamFormat format = FormatFromRawCodecId(other.rawId);
    const Samples silence(static_cast<size_t>(FrameSamples(format)), 0);
    const std::string packet = Process(*encoder, BytesOf(silence));
    const bool same = other.rawId == m_id || (other.family == kAudioCodecOPUS && m_id >= 50 &&
                                              m_format.iCodec == kAudioCodecOPUS);
    const bool alike = other.rawId + m_id == 56;  // 1 and 55 differ in nothing but the family.
    if (!same && !alike) {
      EXPECT_EQ(Process(*m_decoder, packet), "") << other.rawId;
    }
  }
  EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
}

TEST_P(EachCodec, LeavesOutDamagedPacketsAndGoesOn) {
  std::vector<std::string> packets = EncodeVoice(1);
  const size_t last = packets.size() - 1;
  for (const std::string& damaged :
       {std::string(), std::string(1, '\0'), packets[1].substr(0, 2), packets[1].substr(0, 5),
        packets[1].substr(0, packets[1].size() - 1), std::string(50, '\0'),
        std::string(50, '\xff')}) {
    EXPECT_EQ(Process(*m_decoder, damaged), "");
  }
  for (size_t i = 0; i < last; ++i) Process(*m_decoder, packets[i]);
  EXPECT_EQ(Process(*m_decoder, packets[last]).size(), BlockBytes());
}

TEST_P(EachCodec, DoesNothingBeforeInitAndAfterDeInit) {
  const std::string packet = EncodeVoice(0.3).front();
  for (const bool fresh : {true, false}) {
    for (const AudioLibraryCodecMode mode : {kAudioLibraryEncoder, kAudioLibraryDecoder}) {
      auto codec = OpenCodec(m_id, mode);
      if (fresh) codec.reset(CreateAudioCodec(codec->CodecID(), mode));
      codec->DeInit();
      EXPECT_FALSE(codec->IsAvailable());
      EXPECT_EQ(Process(*codec, packet), "");
      EXPECT_EQ(Process(*codec, std::string(20000, '\1')), "");
      EXPECT_EQ(codec->CodecDelay(), 0);
      EXPECT_EQ(codec->CodecLevel(), 0);
      EXPECT_EQ(codec->GetEncoderSize(), 0);
      EXPECT_EQ(codec->GetDecodedSampleRate(), 0);
      EXPECT_EQ(codec->GetDecodedChannel(), 0);
    }
  }
}

TEST_P(EachCodec, SaysWhatItIs) {
  EXPECT_TRUE(m_encoder->IsAvailable());
  EXPECT_EQ(m_encoder->CodecMode(), kAudioLibraryEncoder);
  EXPECT_EQ(m_decoder->CodecMode(), kAudioLibraryDecoder);
  EXPECT_EQ(m_decoder->CodecLevel(), m_format.iQuality);
  EXPECT_EQ(m_decoder->GetDecodedSampleRate(), m_format.iSampleRate);
  EXPECT_EQ(m_decoder->GetDecodedChannel(), m_format.iNumOfChannels);
  EXPECT_NE(std::string(m_encoder->CodecDescribe()), "");
  EXPECT_EQ(m_encoder->GetAncData(nullptr, nullptr, 0), 0);
  const bool eld = m_encoder->CodecID() == kAudioCodecEldAAC;
  EXPECT_EQ(m_encoder->GetEncoderSize(), eld ? 2 * FrameSamples(m_format) : 0);
  EXPECT_EQ(m_decoder->GetEncoderSize(), 0);
  int room = 0;
  m_decoder->CalcBufSize(&room, 100);
  EXPECT_EQ(room, 2 * FrameSamples(m_format));
  m_encoder->CalcBufSize(&room, 2 * FrameSamples(m_format));
  EXPECT_GE(room, 1025);
  m_encoder->CalcBufSize(&room, INT_MAX);
  EXPECT_GE(room, INT_MAX / (2 * FrameSamples(m_format)));
  m_encoder->CalcBufSize(&room, -1);
  EXPECT_EQ(room, 0);
}

TEST_P(EachCodec, AllocatesNothingPerFrame) {
  const std::string frame = BytesOf(Samples(static_cast<size_t>(FrameSamples(m_format)), 100));
  std::vector<unsigned char> packet(1100);
  std::vector<unsigned char> samples(frame.size());
  const size_t before = AllocationCount();
  for (int i = 0; i < 10; ++i) {
    int bytes = static_cast<int>(packet.size());
    m_encoder->Process(reinterpret_cast<const unsigned char*>(frame.data()),
                       static_cast<int>(frame.size()), packet.data(), &bytes);
    int decoded = static_cast<int>(samples.size());
    m_decoder->Process(packet.data(), bytes, samples.data(), &decoded);
    EXPECT_EQ(decoded, static_cast<int>(samples.size()));
  }
  EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
