// Streams of which only a part can be converted, or nothing.

#include <gmock/gmock.h>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/stream_material.h"
#include "engine_api/codec/codec_format.h"
#include "support/captured_stderr.h"

namespace {

using testing::HasSubstr;

std::vector<std::string> Packets(int rawId) {
  const AudioStreamFormat format = FormatFromRawCodecId(rawId);
  return Encode(*OpenCodec(rawId, kAudioLibraryEncoder),
                Voice(format.iSampleRate, format.iNumOfChannels, 0.5),
                format.iSamplesOfFrame * format.iNumOfChannels);
}

class StreamToAacEdges : public testing::Test {
 protected:
  void SetUp() override {
    if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  }
};

}  // namespace

// Frames whose header is right and whose packet is none.
TEST_F(StreamToAacEdges, NothingComesOfDamagedFramesAlone) {
  const CapturedStderr log;
  const std::string damaged("\x05\xfc\x02\x49\0\0\0", 7);  // Two frames of Opus, where one is due.
  EXPECT_EQ(Converted(damaged + damaged + damaged), "");
  EXPECT_THAT(log.Text(), HasSubstr("no packet that could be converted"));
}

TEST_F(StreamToAacEdges, ADamagedFrameAmongOthersIsLeftOut) {
  const CapturedStderr log;
  const std::vector<std::string> packets = Packets(2);
  const std::string damaged("\x05\xfc\x02\x49\0\0\0", 7);
  EXPECT_EQ(Converted(packets[0] + damaged + packets[1] + packets[2]),
            Converted(packets[0] + packets[1] + packets[2]));
}

// What of another rate, profile or channel count stands between is no part of the result.
TEST_F(StreamToAacEdges, AdtsOfTheFirstFramesKindAlone) {
  const std::vector<std::string> frames = Packets(46);
  const std::string expected = frames[0] + frames[2];
  for (const auto& [at, bits] : {std::pair(2, 0x40),
                                 {2, 0x80},
                                 {2, 0x04},
                                 {2, 0x08},
                                 {2, 0x20},
                                 {2, 0x01},
                                 {3, 0x40},
                                 {3, 0x80}}) {
    std::string other = frames[1];
    other[static_cast<size_t>(at)] = static_cast<char>(other[static_cast<size_t>(at)] ^ bits);
    EXPECT_EQ(Converted(frames[0] + other + frames[2]), expected) << at << ": " << bits;
  }
  // The private bit and those of the copyright say nothing about how it is coded.
  std::string alike = frames[1];
  alike[2] = static_cast<char>(alike[2] ^ 2);
  alike[3] = static_cast<char>(alike[3] ^ 0x3c);
  EXPECT_EQ(Converted(frames[0] + alike + frames[2]), frames[0] + alike + frames[2]);
}

// Any number of other bytes, odd ones too, before and between.
TEST_F(StreamToAacEdges, TheFrameAfterAnyNumberOfOtherBytesIsFound) {
  for (const int id : {1, 35, 2}) {
    const std::vector<std::string> packets = Packets(id);
    const std::string whole = Converted(Join(packets));
    for (const size_t junk : {1U, 2U, 3U, 8U, 9U}) {
      const std::string noise(junk, '\x55');
      EXPECT_EQ(Converted(noise + Join(packets)), whole) << id << " after " << junk;
    }
    // A frame that is followed by none counts as a mark that only looks like one.
    const std::string first = packets[0] + packets[1];
    EXPECT_EQ(Converted(first + std::string(3, '\x55') + packets[2] + packets[3]),
              Converted(packets[0] + packets[2] + packets[3]))
        << id;
  }
}

// One frame is enough when it ends the stream.
TEST_F(StreamToAacEdges, ASingleFrame) {
  for (const int id : {1, 35, 2}) {
    const std::string frame = Packets(id)[0];
    EXPECT_NE(Converted(frame), "") << id;
    for (const size_t junk : {1U, 2U, 3U}) {
      EXPECT_EQ(Converted(std::string(junk, '\x55') + frame), Converted(frame)) << id;
    }
    const CapturedStderr log;
    EXPECT_EQ(Converted(frame + "\x55\x55\x55\x55\x55\x55\x55"), "") << id;
  }
}

// As many samples as came in, filled up to a frame, and what the encoder still held.
TEST_F(StreamToAacEdges, TheEndIsThere) {
  const std::vector<std::string> packets = Packets(2);
  for (const size_t count : {size_t{1U}, size_t{3}, size_t{16}, size_t{20}}) {
    const std::string aac =
        Converted(Join({packets.begin(), packets.begin() + static_cast<std::ptrdiff_t>(count)}));
    size_t frames = 0;
    for (size_t at = 0; at + 7 <= aac.size(); ++frames) {
      const auto byte = [&](size_t i) { return static_cast<unsigned char>(aac[at + i]); };
      at += static_cast<size_t>((byte(3) & 3) << 11 | byte(4) << 3 | byte(5) >> 5);
    }
    EXPECT_EQ(frames, (count * 320 + 1023) / 1024 + 1) << count;
  }
}
