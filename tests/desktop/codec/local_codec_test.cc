#include "engine_api/codec/local_codec.h"

#include <gmock/gmock.h>

#include <climits>
#include <cstdlib>
#include <memory>

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/codec_format.h"
#include "support/captured_stderr.h"

namespace AudioLocalCodec {
namespace {

struct Destroyer {
  void operator()(IAudioEncoder* encoder) const { encoder->Destroy(); }
  void operator()(IAudioDecoder* decoder) const { decoder->Destroy(); }
};

struct Expected {
  AudioCodecType type;
  int rate;
  int channels;
  int frame;  // Samples per channel.
  int lag;
  double snrDb;   // At least.
  size_t packet;  // Bytes where they do not vary, else 0.
};

const Expected kExpected[] = {
    {SPEEX_CODEC_8, 8000, 1, 160, 80, 8.5, 38},    {SPEEX_CODEC_4, 8000, 1, 160, 80, 7.5, 20},
    {SPEEX_CODEC_2, 8000, 1, 160, 80, 6.3, 15},    {AAC_PLUS_CODEC, 44100, 2, 2048, 9154, 0.6, 0},
    {SILK_CODEC, 16000, 1, 320, 104, 16.3, 0},     {AAC_ELD_CODEC, 44100, 2, 1024, 579, 17.3, 0},
    {AAC_LC_CODEC, 44100, 2, 1024, 3072, 30.1, 0}, {AAC_AUDIT_CODEC, 44100, 2, 1024, 3072, 31.8, 0},
    {WAV_CODEC, 44100, 2, 882, 0, 90, 3528}};

bool IsAac(AudioCodecType type) {
  return type == AAC_PLUS_CODEC || type == AAC_ELD_CODEC || type == AAC_LC_CODEC ||
         type == AAC_AUDIT_CODEC;
}

class EachType : public testing::TestWithParam<Expected> {
 protected:
  void SetUp() override {
    const Expected& row = GetParam();
    m_encoder.reset(CreateAudioEncoder(row.type));
    m_decoder.reset(CreateAudioDecoder(row.type));
    if (IsAac(row.type) && AUDIO_ENGINE_HAS_AAC == 0) {
      EXPECT_EQ(m_encoder, nullptr);
      EXPECT_EQ(m_decoder, nullptr);
      GTEST_SKIP() << "built without AAC";
    }
    ASSERT_NE(m_encoder, nullptr);
    ASSERT_NE(m_decoder, nullptr);
    EXPECT_EQ(m_encoder->GetEncoderBytes(), BlockBytes());
    ASSERT_TRUE(m_encoder->Init());
    ASSERT_TRUE(m_decoder->Init());
    m_voice = BytesOf(Voice(row.rate, row.channels, 2));
  }

  int BlockBytes() const { return GetParam().frame * GetParam().channels * 2; }

  const char* Frame(int index) const {
    return m_voice.data() + static_cast<std::ptrdiff_t>(index) * BlockBytes();
  }

  std::vector<std::string> EncodeAll() {
    std::vector<std::string> packets;
    const int frames = static_cast<int>(m_voice.size()) / BlockBytes();
    for (int i = 0; i < frames; ++i) {
      m_encoder->Encode(Frame(i), BlockBytes(), m_out);
      packets.push_back(m_out);
    }
    return packets;
  }

  std::string DecodeOne(const std::string& packet) {
    m_decoder->Decode(packet.data(), static_cast<int>(packet.size()), m_out);
    return m_out;
  }

  std::unique_ptr<IAudioEncoder, Destroyer> m_encoder;
  std::unique_ptr<IAudioDecoder, Destroyer> m_decoder;
  std::string m_voice;
  std::string m_out = "what was there before";
};

INSTANTIATE_TEST_SUITE_P(Types, EachType, testing::ValuesIn(kExpected),
                         [](auto& info) { return "Type" + std::to_string(info.param.type); });

TEST_P(EachType, BringsTheSignalBack) {
  const Expected& row = GetParam();
  std::string decoded;
  for (const std::string& packet : EncodeAll()) {
    EXPECT_FALSE(packet.empty());
    if (row.packet != 0) {
      EXPECT_EQ(packet.size(), row.packet);
    }
    decoded += DecodeOne(packet);
    EXPECT_EQ(m_out.size(), static_cast<size_t>(BlockBytes()));  // Replaced, not extended.
  }
  const Samples voice = SamplesOf(m_voice);
  EXPECT_NEAR(BestLag(voice, SamplesOf(decoded), row.channels, row.lag), row.lag, 1);
  EXPECT_GE(SnrDb(voice, SamplesOf(decoded), row.channels, row.lag), row.snrDb);
}

TEST_P(EachType, StartsAfreshOnFlushAndOnInit) {
  const std::vector<std::string> packets = EncodeAll();
  m_encoder->Flush();
  EXPECT_EQ(EncodeAll(), packets);
  m_encoder->Uninit();
  EXPECT_TRUE(m_encoder->Init());
  EXPECT_EQ(EncodeAll(), packets);

  const std::string first = DecodeOne(packets[0]);
  DecodeOne(packets[20]);
  m_decoder->Flush();
  EXPECT_EQ(DecodeOne(packets[0]), first);
}

TEST_P(EachType, GivesNothingOutsideOfInit) {
  const std::string packet = EncodeAll().front();
  m_encoder->Uninit();
  m_decoder->Uninit();
  m_encoder->Flush();
  m_decoder->Flush();
  m_encoder->Encode(Frame(0), BlockBytes(), m_out);
  EXPECT_EQ(m_out, "");
  m_out = "before";
  m_encoder->EncodeLoss(m_out);
  EXPECT_EQ(m_out, "");
  EXPECT_EQ(DecodeOne(packet), "");
  m_out = "before";
  m_decoder->DecodeLoss(m_out);
  EXPECT_EQ(m_out, "");
  EXPECT_FALSE(m_encoder->SetBitRate(32000));
  EXPECT_FALSE(m_encoder->SetComplexity(5));
  EXPECT_EQ(m_encoder->GetEncoderBytes(), BlockBytes());
}

TEST_P(EachType, RefusesLengthsThatAreNone) {
  const CapturedStderr log;
  const std::string packet = EncodeAll().front();
  for (const int length : {-1, INT_MIN, BlockBytes() + 1, INT_MAX, 0}) {
    m_out = "before";
    m_encoder->Encode(Frame(0), length, m_out);
    EXPECT_EQ(m_out, "") << length;
  }
  const int bytes = static_cast<int>(packet.size());
  for (const int length : {-1, INT_MIN, 4000, INT_MAX, 0, 1, bytes - 1}) {
    m_out = "before";
    // The packet and enough after it.
    const std::string more = packet + std::string(4000, '\0');
    m_decoder->Decode(more.data(), length, m_out);
    EXPECT_EQ(m_out, "") << length;
    m_decoder->Flush();
  }
  EXPECT_LE(log.Lines().size(), 1U) << log.Text();
  EXPECT_NE(DecodeOne(packet), "");
}

TEST_P(EachType, FillsUpAShortFrameWithSilence) {
  const std::string part(Frame(3), 200);
  m_encoder->Encode(part.data(), 200, m_out);
  const std::string packet = m_out;
  m_encoder->Flush();
  const std::string filled = part + std::string(static_cast<size_t>(BlockBytes()) - 200, '\0');
  m_encoder->Encode(filled.data(), BlockBytes(), m_out);
  EXPECT_EQ(m_out, packet);
}

TEST_P(EachType, ConcealsLosses) {
  m_decoder->DecodeLoss(m_out);  // Before any packet.
  EXPECT_EQ(m_out.size(), static_cast<size_t>(BlockBytes()));
  const std::vector<std::string> packets = EncodeAll();
  for (size_t i = 0; i < packets.size() / 2; ++i) DecodeOne(packets[i]);
  int loudest = 0;
  for (int i = 0; i < 50; ++i) {
    m_decoder->DecodeLoss(m_out);
    ASSERT_EQ(m_out.size(), static_cast<size_t>(BlockBytes()));
    loudest = 0;
    for (const short sample : SamplesOf(m_out)) loudest = std::max(loudest, std::abs(sample));
  }
  EXPECT_LT(loudest, 300) << "faded out in the end";

  m_encoder->EncodeLoss(m_out);
  const std::string packet = std::move(m_out);
  EXPECT_FALSE(packet.empty());
  EXPECT_EQ(DecodeOne(packet).size(), static_cast<size_t>(BlockBytes()));
}

TEST_P(EachType, TakesComplexitiesFrom0To10) {
  EXPECT_FALSE(m_encoder->SetComplexity(-1));
  EXPECT_FALSE(m_encoder->SetComplexity(11));
  for (const int complexity : {0, 1, 4, 5, 10}) {
    EXPECT_TRUE(m_encoder->SetComplexity(complexity)) << complexity;
    m_encoder->Encode(Frame(2), BlockBytes(), m_out);
    EXPECT_FALSE(m_out.empty());
  }
}

TEST_P(EachType, TakesBitRatesWhereThePacketsVary) {
  for (const int wrong : {-1, 0, INT_MIN}) EXPECT_FALSE(m_encoder->SetBitRate(wrong)) << wrong;
  const int rate = GetParam().type == AAC_PLUS_CODEC ? 32000 : 40000;
  EXPECT_EQ(m_encoder->SetBitRate(rate), GetParam().packet == 0);
  m_encoder->Encode(Frame(2), BlockBytes(), m_out);
  EXPECT_FALSE(m_out.empty());
}

TEST(LocalCodec, FollowsTheBitRate) {
  const auto size = [](int bitRate) {
    const std::unique_ptr<IAudioEncoder, Destroyer> encoder(CreateAudioEncoder(SILK_CODEC));
    encoder->Init();
    encoder->SetBitRate(bitRate);
    const std::string voice = BytesOf(Voice(16000, 1, 2));
    size_t bytes = 0;
    std::string packet;
    for (size_t at = 0; at + 640 <= voice.size(); at += 640) {
      encoder->Encode(voice.data() + at, 640, packet);
      bytes += packet.size();
    }
    return bytes;
  };
  EXPECT_GT(size(24000), size(10000) * 6 / 5);
}

TEST(LocalCodec, KeepsTheSamplesOfTheWaveType) {
  const std::unique_ptr<IAudioEncoder, Destroyer> encoder(CreateAudioEncoder(WAV_CODEC));
  ASSERT_TRUE(encoder->Init());
  const std::string voice = BytesOf(Voice(44100, 2, 0.1));
  std::string packet;
  encoder->Encode(voice.data(), 3528, packet);
  EXPECT_EQ(packet, voice.substr(0, 3528));
}

// The library would print on the error stream.
TEST(LocalCodec, TakesOnlySpeexPacketsOfItsMode) {
  const std::unique_ptr<IAudioDecoder, Destroyer> decoder(CreateAudioDecoder(SPEEX_CODEC_8));
  ASSERT_TRUE(decoder->Init());
  const CapturedStderr log;
  std::string out;
  for (int first = 0; first < 256; ++first) {
    const std::string packet = static_cast<char>(first) + std::string(37, '\x5a');
    decoder->Decode(packet.data(), 38, out);
    EXPECT_EQ(out.empty(), first >> 3 != 5) << first;
  }
  EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
}

// A lost frame joins on where the last one ended, and the second in a row is silent.
TEST(LocalCodec, MirrorsTheLastFrameOfTheWaveType) {
  const std::unique_ptr<IAudioDecoder, Destroyer> decoder(CreateAudioDecoder(WAV_CODEC));
  ASSERT_TRUE(decoder->Init());
  Samples frame;
  for (int i = 0; i < 882; ++i) {
    frame.push_back(static_cast<short>(i));
    frame.push_back(static_cast<short>(-2 * i));
  }
  std::string out;
  const std::string bytes = BytesOf(frame);
  decoder->Decode(bytes.data(), static_cast<int>(bytes.size()), out);
  decoder->DecodeLoss(out);
  const Samples lost = SamplesOf(out);
  EXPECT_EQ(lost[0], 881);
  EXPECT_EQ(lost[1], -1762);
  EXPECT_EQ(lost[2 * 441], 220);  // Half way back, half as loud.
  decoder->DecodeLoss(out);
  EXPECT_EQ(SamplesOf(out), Samples(1764, 0));
}

TEST(LocalCodec, HasNoOtherTypes) {
  for (int type = -256; type <= 255; ++type) {
    bool known = false;
    for (const Expected& row : kExpected) known = known || row.type == type;
    if (known) continue;
    EXPECT_EQ(CreateAudioEncoder(static_cast<AudioCodecType>(type)), nullptr) << type;
    EXPECT_EQ(CreateAudioDecoder(static_cast<AudioCodecType>(type)), nullptr) << type;
  }
}

}  // namespace
}  // namespace AudioLocalCodec
