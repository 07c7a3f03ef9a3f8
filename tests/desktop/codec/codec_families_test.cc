// The families of codecs: which ids and formats each takes, and what is particular to one of them.

#include <gmock/gmock.h>

#include <climits>
#include <cmath>

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/audio_codec.h"
#include "engine_api/codec/codec_format.h"
#include "support/captured_stderr.h"

namespace {

TEST(CreateAudioCodec, HasSixFamilies) {
  int offered = 0;
  for (int family = 0; family < 4096; ++family) {
    const std::unique_ptr<CAudioCodec> encoder(
        CreateAudioCodec(static_cast<ZUAudioCodec>(family), kAudioLibraryEncoder));
    const std::unique_ptr<CAudioCodec> decoder(
        CreateAudioCodec(static_cast<ZUAudioCodec>(family), kAudioLibraryDecoder));
    EXPECT_EQ(encoder == nullptr, decoder == nullptr);
    if (encoder == nullptr) continue;
    ++offered;
    EXPECT_EQ(encoder->CodecID(), family);
  }
  EXPECT_EQ(offered, AUDIO_ENGINE_HAS_AAC != 0 ? 6 : 2);
}

TEST(CreateAudioCodec, CodesOnlyTheIdsOfItsFamily) {
  const CapturedStderr log;
  for (const CodecId& family : CodecIds()) {
    const std::unique_ptr<CAudioCodec> codec(CreateAudioCodec(family.family, kAudioLibraryDecoder));
    for (const CodecId& id : CodecIds()) {
      AudioStreamFormat format = FormatFromRawCodecId(id.rawId);
      EXPECT_EQ(codec->Init(&format), id.family == family.family);
    }
    for (const int id : {-1, 0, 3, 56, INT_MAX, INT_MIN}) {
      AudioStreamFormat format = FormatFromRawCodecId(35);
      format.iRawCodecId = id;
      EXPECT_FALSE(codec->Init(&format));
    }
    EXPECT_FALSE(codec->Init(nullptr));
  }
}

TEST(CreateAudioCodec, RefusesAbsurdFormats) {
  const CapturedStderr log;
  for (const CodecId& id : CodecIds()) {
    const std::unique_ptr<CAudioCodec> codec(CreateAudioCodec(id.family, kAudioLibraryEncoder));
    for (const int absurd : {0, -1, 3, 12345, INT_MAX, INT_MIN}) {
      AudioStreamFormat format = FormatFromRawCodecId(id.rawId);
      format.iSampleRate = absurd;
      EXPECT_FALSE(codec->Init(&format)) << id.rawId << " at " << absurd;
      format = FormatFromRawCodecId(id.rawId);
      format.iNumOfChannels = absurd;
      EXPECT_FALSE(codec->Init(&format)) << id.rawId << " with " << absurd;
    }
  }
}

TEST(CreateAudioCodec, TakesOrRefusesEveryRateThatAacKnows) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  const CapturedStderr log;
  for (const CodecId& id : CodecIds()) {
    for (const int rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000, 96000}) {
      for (const int channels : {1, 2}) {
        const std::unique_ptr<CAudioCodec> encoder(
            CreateAudioCodec(id.family, kAudioLibraryEncoder));
        const std::unique_ptr<CAudioCodec> decoder(
            CreateAudioCodec(id.family, kAudioLibraryDecoder));
        AudioStreamFormat format = FormatFromRawCodecId(id.rawId);
        format.iSampleRate = rate;
        format.iNumOfChannels = channels;
        const bool taken = encoder->Init(&format);
        EXPECT_EQ(decoder->Init(&format), taken) << id.rawId << " at " << rate;
        if (!taken) continue;
        const std::string packet = Process(*encoder, BytesOf(Samples(4096, 0)));
        EXPECT_NE(packet, "") << id.rawId << " at " << rate << " with " << channels;
        EXPECT_NE(Process(*decoder, packet), "") << id.rawId << " at " << rate;
      }
    }
  }
}

// Deliberate: the frame of id 38 at 16 kHz mono is 512 samples whatever its record says. Band
// replication, which doubles it, is not to be had at that rate.
TEST(CreateAudioCodec, CodesId38At16kHzMono) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  const std::unique_ptr<CAudioCodec> encoder(
      CreateAudioCodec(kAudioCodecEldAAC, kAudioLibraryEncoder));
  const std::unique_ptr<CAudioCodec> decoder(
      CreateAudioCodec(kAudioCodecEldAAC, kAudioLibraryDecoder));
  AudioStreamFormat format = FormatFromRawCodecId(38);
  format.iSampleRate = 16000;
  format.iNumOfChannels = 1;
  ASSERT_TRUE(encoder->Init(&format));
  ASSERT_TRUE(decoder->Init(&format));
  EXPECT_EQ(encoder->GetEncoderSize(), 1024);
  EXPECT_EQ(encoder->CodecDelay(), 256);

  const Samples voice = Voice(16000, 1, 2);
  const std::vector<std::string> packets = Encode(*encoder, voice, 512);
  const Samples decoded = Decode(*decoder, packets);
  EXPECT_EQ(decoded.size(), packets.size() * 512);
  EXPECT_GE(SnrDb(voice, decoded, 1, 256), 20);
}

TEST(CreateAudioCodec, DecodesId50AsId51) {
  const Samples voice = Voice(16000, 1, 2);
  const std::vector<std::string> packets = Encode(*OpenCodec(50, kAudioLibraryEncoder), voice, 320);
  const Samples decoded = Decode(*OpenCodec(51, kAudioLibraryDecoder), packets);
  ASSERT_EQ(decoded.size(), packets.size() * 960);
  // Late by 310 samples at 48 kHz, which are 103 at 16 kHz and one more.
  Samples thirds;
  for (size_t i = 1; i < decoded.size(); i += 3) thirds.push_back(decoded[i]);
  EXPECT_EQ(BestLag(voice, thirds, 1, 104), 103);
  EXPECT_GE(SnrDb(voice, thirds, 1, 103), 14);
}

TEST(CreateAudioCodec, CodesSilkFramesAlone) {
  for (const int id : {2, 22}) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    for (const std::string& packet :
         Encode(*OpenCodec(id, kAudioLibraryEncoder), Voice(format.iSampleRate, 1, 2),
                format.iSamplesOfFrame)) {
      EXPECT_LT(static_cast<unsigned char>(packet[3]) >> 3, 12);  // RFC 6716, table 2.
    }
  }
}

// What band replication makes up is like the original in level, not in waveform.
TEST(CreateAudioCodec, KeepsTheLevelsOfTheBands) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  for (const int id : {1, 46, 55, 38}) {
    // Noise, coloured like music.
    Samples noise;
    unsigned state = 1;
    double low = 0;
    for (int i = 0; i < 2 * 2 * 44100; ++i) {
      state = state * 1664525 + 1013904223;
      const double white = static_cast<double>(state >> 8) / (1 << 23) - 1;
      low += 0.2 * (white - low);
      noise.push_back(static_cast<short>(6000 * low + 500 * white));
    }
    const int frame = FrameSamples(FormatFromRawCodecId(id));
    const Samples decoded = Decode(*OpenCodec(id, kAudioLibraryDecoder),
                                   Encode(*OpenCodec(id, kAudioLibraryEncoder), noise, frame));
    const std::vector<double> before = BandLevels(noise, 44100, 2);
    const std::vector<double> after = BandLevels(decoded, 44100, 2);
    double difference = 0;
    for (size_t i = 0; i < before.size(); ++i) difference += std::abs(before[i] - after[i]);
    EXPECT_LE(difference / static_cast<double>(before.size()), 2) << id;
  }
}

}  // namespace
