#include "engine_api/codec/stream_to_aac.h"

#include <gmock/gmock.h>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/ffmpeg.h"
#include "desktop/codec/stream_material.h"
#include "engine_api/codec/codec_format.h"
#include "support/captured_stderr.h"

namespace {

class EachId : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
    m_packets = Encode(*OpenCodec(GetParam(), kAudioLibraryEncoder),
                       Voice(m_format.iSampleRate, m_format.iNumOfChannels, 2),
                       m_format.iSamplesOfFrame * m_format.iNumOfChannels);
  }
  bool IsCopied() const { return m_packets[0][0] == '\xff' && m_packets[0][1] == '\xf1'; }

  const AudioStreamFormat m_format = FormatFromRawCodecId(GetParam());
  std::vector<std::string> m_packets;
};

INSTANTIATE_TEST_SUITE_P(RawIds, EachId,
                         testing::Values(1, 2, 22, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46,
                                         50, 51, 53, 55),
                         [](auto& info) { return "Id" + std::to_string(info.param); });

TEST_P(EachId, BecomesAacThatOthersDecode) {
  const std::string stream = Join(m_packets);
  const std::string aac = Converted(stream);
  if (IsCopied()) {
    EXPECT_EQ(aac, stream);
  }
  const Decoded decoded = DecodeWithFfmpeg(aac);
  if (!decoded.available) GTEST_SKIP() << "ffmpeg is not installed";
  EXPECT_EQ(decoded.complaints, "");
  EXPECT_EQ(decoded.rate, GetParam() == 50 ? 48000 : m_format.iSampleRate);
  EXPECT_EQ(decoded.channels, m_format.iNumOfChannels);
  const double seconds =
      static_cast<double>(m_packets.size()) * m_format.iSamplesOfFrame / m_format.iSampleRate;
  // Recoded: up to one frame filled up and one of the encoder's own.
  EXPECT_GE(decoded.seconds, seconds - 1e-6);
  EXPECT_LE(decoded.seconds, seconds + 2 * 1024.0 / decoded.rate);
}

TEST_P(EachId, LeavesOutWhatIsDamaged) {
  const std::string whole = Converted(Join(m_packets));
  std::vector<std::string> packets = m_packets;
  const std::string noise(40, '\x55');
  packets.insert(packets.begin(), noise);
  packets.push_back(packets.back().substr(0, packets.back().size() / 2));
  EXPECT_EQ(Converted(Join(packets)), whole);  // In front and at the end.

  // A frame whose length is wrong, in the middle.
  packets = m_packets;
  std::string& hit = packets[packets.size() / 2];
  hit[IsCopied() ? 4 : 0] = static_cast<char>(hit[IsCopied() ? 4 : 0] ^ 0x10);
  const std::string aac = Converted(Join(packets));
  EXPECT_LT(aac.size(), whole.size() + 10);
  EXPECT_GT(aac.size(), whole.size() * 8 / 10);
  const Decoded decoded = DecodeWithFfmpeg(aac);
  if (decoded.available) {
    EXPECT_EQ(decoded.complaints, "");
  }
}

TEST_P(EachId, GivesTheSameBytesEveryTime) {
  const std::string stream = Join(m_packets);
  EXPECT_EQ(Converted(stream), Converted(stream));
}

TEST(TransZUStreamToAAC, KeepsTheWaveform) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  // Silk in, AAC LC out: back by the one decoder that takes LC of this rate.
  const Samples voice = Voice(16000, 1, 2);
  const std::string aac = Converted(Join(Encode(*OpenCodec(2, kAudioLibraryEncoder), voice, 320)));
  std::vector<std::string> packets;
  for (size_t at = 0; at + 7 < aac.size();) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(aac[at + i]); };
    const size_t frame = static_cast<size_t>((byte(3) & 3) << 11 | byte(4) << 3 | byte(5) >> 5);
    const size_t packet = frame - 7 + 1;
    packets.push_back(
        std::string{static_cast<char>(packet & 0xff), static_cast<char>(0xfc | packet >> 8), 41} +
        aac.substr(at + 7, frame - 7));
    at += frame;
  }
  const std::unique_ptr<CAudioCodec> decoder(
      CreateAudioCodec(kAudioCodecAACHIGH, kAudioLibraryDecoder));
  AudioStreamFormat format = FormatFromRawCodecId(41);
  format.iSampleRate = 16000;
  ASSERT_TRUE(decoder->Init(&format));
  const Samples decoded = Decode(*decoder, packets);
  // The lag of LC, less the packet that is left out, and that of Silk.
  const int lag = 3072 - 1024 + 104;
  EXPECT_NEAR(BestLag(voice, decoded, 1, lag), lag, 1);
  EXPECT_GE(SnrDb(voice, decoded, 1, lag), 14);
  EXPECT_GE(decoded.size(), voice.size() + 1024) << "the end is there";
}

TEST(TransZUStreamToAAC, FindsNothingInBytesWithoutAMark) {
  const CapturedStderr log;
  unsigned char other = 0;
  for (const std::string& bytes :
       {std::string("x"), std::string(1000, '\0'), std::string(1000, '\x55'),
        std::string("\0\xfc", 2), std::string("\2\xfc\x07\1", 4)}) {
    unsigned char* out = &other;
    EXPECT_EQ(TransZUStreamToAAC(bytes.data(), static_cast<int>(bytes.size()), &out), 0);
    EXPECT_EQ(out, nullptr);
  }
  unsigned char* out = &other;
  EXPECT_EQ(TransZUStreamToAAC(nullptr, 0, &out), 0);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(TransZUStreamToAAC("abc", -1, &out), 0);
}

}  // namespace
