// What a codec does at the edges of its buffers, over all ids.

#include <gmock/gmock.h>

#include <climits>

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/codec_format.h"
#include "support/captured_stderr.h"

namespace {

// Two frames of a voice, in bytes.
struct Material {
  explicit Material(int rawId) : format(FormatFromRawCodecId(rawId)) {
    const auto frame =
        static_cast<size_t>(format.iSamplesOfFrame) * static_cast<size_t>(format.iNumOfChannels);
    // The middle of a syllable.
    const Samples voice = Voice(format.iSampleRate, format.iNumOfChannels, 0.25);
    first = BytesOf(Samples(voice.end() - static_cast<std::ptrdiff_t>(2 * frame),
                            voice.end() - static_cast<std::ptrdiff_t>(frame)));
    second = BytesOf(Samples(voice.end() - static_cast<std::ptrdiff_t>(frame), voice.end()));
  }

  AudioStreamFormat format;
  std::string first;
  std::string second;
};

}  // namespace

TEST(CodecEdges, DeInitForgetsAFrameThatHadBegun) {
  for (const CodecId& id : CodecIds()) {
    Material voice(id.rawId);
    ASSERT_NE(voice.first.substr(0, 100), voice.second.substr(0, 100)) << id.rawId;
    const auto encoder = OpenCodec(id.rawId, kAudioLibraryEncoder);
    EXPECT_EQ(Process(*encoder, voice.first.substr(0, 100)), "") << id.rawId;
    encoder->DeInit();
    ASSERT_TRUE(encoder->Init(&voice.format)) << id.rawId;
    EXPECT_EQ(Process(*encoder, voice.second),
              Process(*OpenCodec(id.rawId, kAudioLibraryEncoder), voice.second))
        << id.rawId;
  }
}

TEST(CodecEdges, APacketThatJustFitsIsGiven) {
  const CapturedStderr log;
  for (const CodecId& id : CodecIds()) {
    const Material voice(id.rawId);
    const std::string packet = Process(*OpenCodec(id.rawId, kAudioLibraryEncoder), voice.first);
    const int bytes = static_cast<int>(packet.size());
    const auto open = [&] { return OpenCodec(id.rawId, kAudioLibraryEncoder); };
    EXPECT_EQ(Process(*open(), voice.first, bytes), packet) << id.rawId;
    EXPECT_EQ(Process(*open(), voice.first, bytes - 1), "") << id.rawId;

    // The room that is left after the first of two.
    const std::string two = Process(*open(), voice.first + voice.second);
    const int both = static_cast<int>(two.size());
    EXPECT_GT(both, bytes) << id.rawId;
    EXPECT_EQ(Process(*open(), voice.first + voice.second, both), two) << id.rawId;
    EXPECT_EQ(Process(*open(), voice.first + voice.second, both - 1), packet) << id.rawId;
  }
}

TEST(CodecEdges, AFrameOfSamplesThatJustFitsIsGiven) {
  const CapturedStderr log;
  for (const CodecId& id : CodecIds()) {
    const Material voice(id.rawId);
    const std::string two =
        Process(*OpenCodec(id.rawId, kAudioLibraryEncoder), voice.first + voice.second);
    const auto open = [&] { return OpenCodec(id.rawId, kAudioLibraryDecoder); };
    const std::string samples = Process(*open(), two);
    const int both = static_cast<int>(samples.size());
    EXPECT_EQ(samples.size(), voice.first.size() * 2) << id.rawId;
    EXPECT_EQ(Process(*open(), two, both), samples) << id.rawId;
    EXPECT_EQ(Process(*open(), two, both - 1), samples.substr(0, samples.size() / 2)) << id.rawId;
  }
}

// The frame that had begun may end with the first sample that comes.
TEST(CodecEdges, CalcBufSizeCountsTheFrameThatHadBegun) {
  for (const CodecId& id : CodecIds()) {
    const Material voice(id.rawId);
    const auto encoder = OpenCodec(id.rawId, kAudioLibraryEncoder);
    const size_t most = voice.first.size() - 2;
    EXPECT_EQ(Process(*encoder, voice.first.substr(0, most)), "") << id.rawId;
    int room = -1;
    encoder->CalcBufSize(&room, 2);
    EXPECT_GE(room, 1024) << id.rawId;
    EXPECT_NE(Process(*encoder, voice.first.substr(most), room), "") << id.rawId;
    encoder->CalcBufSize(&room, static_cast<int>(voice.first.size()));
    EXPECT_GE(room, 2 * 1024) << id.rawId;
    EXPECT_LE(room, 2 * 1029) << "no more than two of the longest frames";
  }
}

TEST(CodecEdges, CalcBufSizeOfNothing) {
  for (const CodecId& id : CodecIds()) {
    for (const int length : {0, -1, INT_MIN}) {
      int room = -1;
      OpenCodec(id.rawId, kAudioLibraryDecoder)->CalcBufSize(&room, length);
      EXPECT_EQ(room, 0) << id.rawId;
    }
    for (const AudioLibraryCodecMode mode : {kAudioLibraryEncoder, kAudioLibraryDecoder}) {
      const auto codec = OpenCodec(id.rawId, mode);
      codec->DeInit();
      int room = -1;
      codec->CalcBufSize(&room, 10000);
      EXPECT_EQ(room, 0) << id.rawId;
    }
  }
}

// The two ids of Opus decode each other's packets, each at its own rate; so do 1 and 55.
TEST(CodecEdges, DecodersTakeTheIdsThatAreCodedAlike) {
  const std::vector<std::pair<int, int>> alike = {{50, 51}, {51, 50}, {1, 55}, {55, 1}};
  for (const auto& [encoded, decoded] : alike) {
    const auto encoder = OpenCodec(encoded, kAudioLibraryEncoder);
    if (encoder == nullptr && AUDIO_ENGINE_HAS_AAC == 0) continue;
    const AudioStreamFormat format = FormatFromRawCodecId(decoded);
    const std::string packet = Process(*encoder, Material(encoded).first);
    EXPECT_EQ(Process(*OpenCodec(decoded, kAudioLibraryDecoder), packet).size(),
              2 * static_cast<size_t>(format.iSamplesOfFrame * format.iNumOfChannels))
        << encoded << " by " << decoded;
  }
}

TEST(CodecEdges, WithoutInputThereIsNoOutput) {
  for (const CodecId& id : CodecIds()) {
    for (const AudioLibraryCodecMode mode : {kAudioLibraryEncoder, kAudioLibraryDecoder}) {
      const auto codec = OpenCodec(id.rawId, mode);
      unsigned char out[8192];
      int bytes = sizeof out;
      codec->Process(nullptr, 100, out, &bytes);
      EXPECT_EQ(bytes, 0) << id.rawId;
    }
  }
}

TEST(CodecEdges, EachFamilyHasItsName) {
  for (const auto& [id, name] :
       {std::pair(2, "Silk"), {50, "Opus"}, {38, "AAC ELD"}, {35, "AAC LC"}, {1, "AAC HE"}}) {
    const auto codec = OpenCodec(id, kAudioLibraryEncoder);
    if (codec == nullptr && AUDIO_ENGINE_HAS_AAC == 0) continue;
    EXPECT_STREQ(codec->CodecDescribe(), name);
  }
}

// One line an object, with the codec's name.
TEST(CodecEdges, ARefusedFormatIsSaidOnce) {
  const CapturedStderr log;
  const auto codec = OpenCodec(50, kAudioLibraryDecoder);
  EXPECT_FALSE(codec->Init(nullptr));
  EXPECT_FALSE(codec->Init(nullptr));
  ASSERT_EQ(log.Lines().size(), 1U) << log.Text();
  EXPECT_THAT(log.Text(), testing::HasSubstr("Opus codec: no such format"));
}

// One byte is no packet either: it is said, and nothing comes out.
TEST(CodecEdges, SayThatASingleByteIsNoPacket) {
  for (const CodecId& id : CodecIds()) {
    const CapturedStderr log;
    EXPECT_EQ(Process(*OpenCodec(id.rawId, kAudioLibraryDecoder), "x"), "") << id.rawId;
    EXPECT_THAT(log.Text(), testing::HasSubstr("no packet of this codec")) << id.rawId;
  }
}

// A frame that comes in parts is one packet, also where its last part is a single byte.
TEST(CodecEdges, AFrameMayComeByteByByte) {
  for (const CodecId& id : CodecIds()) {
    const std::string frame = Material(id.rawId).first;
    const auto encoder = OpenCodec(id.rawId, kAudioLibraryEncoder);
    EXPECT_EQ(Process(*encoder, frame.substr(0, frame.size() - 1)), "") << id.rawId;
    EXPECT_EQ(Process(*encoder, frame.substr(frame.size() - 1)),
              Process(*OpenCodec(id.rawId, kAudioLibraryEncoder), frame))
        << id.rawId;
  }
}
