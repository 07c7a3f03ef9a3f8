#include "desktop/codec/parts/frame_header.h"

#include <gmock/gmock.h>

#include "desktop/codec/parts/codec_table.h"

namespace desktop {
namespace {

using Bytes = std::vector<unsigned char>;

// An ADTS frame of `length` bytes as id 46 has it: core at 22050 Hz, two channels.
Bytes Adts(int length) {
  Bytes frame(static_cast<size_t>(length));
  FrameHeader({FindVariant(46), 44100, 2}).Write(frame.data(), length - 7);
  return frame;
}

FrameSpan Read46(const Bytes& frame, int size) {
  return FrameHeader({FindVariant(46), 44100, 2}).Read(frame.data(), size);
}

FrameSpan Read46(const Bytes& frame) { return Read46(frame, static_cast<int>(frame.size())); }

Bytes TwoByte(int id, int length) {
  Bytes frame(static_cast<size_t>(length));
  FrameHeader({FindVariant(id), 16000, 1}).Write(frame.data(), length - 3);
  return frame;
}

FrameSpan Read2(const Bytes& frame, int size) {
  return FrameHeader({FindVariant(2), 16000, 1}).Read(frame.data(), size);
}

}  // namespace

TEST(FrameHeader, ReadsTheAdtsItWrites) {
  for (const int length : {8, 100, 255, 256, 1029}) {
    const Bytes frame = Adts(length);
    const FrameSpan span = Read46(frame);
    EXPECT_EQ(span.state, FrameSpan::kWhole) << length;
    EXPECT_EQ(span.frameBytes, length);
    EXPECT_EQ(span.packetOffset, 7);
    EXPECT_EQ(span.packetBytes, length - 7);
    EXPECT_EQ(Read46(frame, length - 1).state, FrameSpan::kIncomplete) << length;
    for (int size = 0; size < 7; ++size) {
      EXPECT_EQ(Read46(frame, size).state, FrameSpan::kIncomplete);
      EXPECT_EQ(ReadAnyAdts(frame.data(), size).state, FrameSpan::kIncomplete);
    }
  }
}

// No decoder could take it, and a reader must not wait for bytes that have no room.
TEST(FrameHeader, RefusesAdtsThatIsTooLongOrEmpty) {
  EXPECT_EQ(Read46(Adts(1030)).state, FrameSpan::kNoFrame);
  EXPECT_EQ(Read46(Adts(1030), 100).state, FrameSpan::kNoFrame);
  EXPECT_EQ(ReadAnyAdts(Adts(1030).data(), 1030).state, FrameSpan::kWhole);
  EXPECT_EQ(ReadAnyAdts(Adts(8191).data(), 8191).frameBytes, 8191);
  EXPECT_EQ(Read46(Adts(7)).state, FrameSpan::kNoFrame);
}

TEST(FrameHeader, RefusesAdtsOfSeveralBlocks) {
  for (const int blocks : {1, 2, 3}) {
    Bytes frame = Adts(100);
    frame[6] = static_cast<unsigned char>(frame[6] | blocks);
    EXPECT_EQ(Read46(frame).state, FrameSpan::kNoFrame) << blocks;
    EXPECT_EQ(ReadAnyAdts(frame.data(), 100).state, FrameSpan::kNoFrame) << blocks;
  }
}

TEST(FrameHeader, TakesEitherMpegVersionAndNoOtherSync) {
  const std::pair<int, int> wrong[] = {{0, 0x7f}, {1, 0x71}, {1, 0xe1},
                                       {1, 0xf0}, {1, 0xf3}, {1, 0xf5}};
  for (const auto& [at, value] : wrong) {
    Bytes frame = Adts(100);
    frame[static_cast<size_t>(at)] = static_cast<unsigned char>(value);
    EXPECT_EQ(Read46(frame).state, FrameSpan::kNoFrame) << at << ": " << value;
    EXPECT_EQ(ReadAnyAdts(frame.data(), 100).state, FrameSpan::kNoFrame) << at << ": " << value;
  }
  Bytes mpeg2 = Adts(100);
  mpeg2[1] = 0xf9;
  EXPECT_EQ(Read46(mpeg2).state, FrameSpan::kWhole);
}

TEST(FrameHeader, TakesAdtsOfItsRateAndChannelsAlone) {
  const Bytes own = Adts(100);
  for (int rate = 0; rate < 16; ++rate) {
    for (int channels = 0; channels < 8; ++channels) {
      Bytes frame = own;
      frame[2] = static_cast<unsigned char>(1 << 6 | rate << 2 | channels >> 2);
      frame[3] = static_cast<unsigned char>((channels & 3) << 6);
      const bool same = rate == 7 && channels == 2;  // 22050 Hz.
      EXPECT_EQ(Read46(frame).state, same ? FrameSpan::kWhole : FrameSpan::kNoFrame)
          << rate << ", " << channels;
    }
  }
}

TEST(FrameHeader, IsValidForTheRatesThatAdtsKnows) {
  const int known[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                       22050, 16000, 12000, 11025, 8000,  7350};
  CodecVariant lc = *FindVariant(35);
  lc.framing = Framing::kAdts;
  int index = 0;
  for (const int rate : known) {
    const FrameHeader header({&lc, rate, 1});
    EXPECT_TRUE(header.IsValid()) << rate;
    unsigned char bytes[kMaxHeaderBytes];
    header.Write(bytes, 10);
    EXPECT_EQ(bytes[2] >> 2 & 15, index++);
  }
  EXPECT_FALSE(FrameHeader({&lc, 12345, 1}).IsValid());
  EXPECT_TRUE(FrameHeader({FindVariant(35), 12345, 1}).IsValid()) << "without a rate in the header";
  // The core of HE runs at half the rate.
  EXPECT_FALSE(FrameHeader({FindVariant(46), 11025, 1}).IsValid());
}

TEST(FrameHeader, ReadsTheTwoBytesItWrites) {
  for (const int length : {4, 100, 257, 258, 1025}) {
    const Bytes frame = TwoByte(2, length);
    const FrameSpan span = Read2(frame, length);
    EXPECT_EQ(span.state, FrameSpan::kWhole) << length;
    EXPECT_EQ(span.frameBytes, length);
    EXPECT_EQ(span.packetOffset, 3);
    EXPECT_EQ(span.packetBytes, length - 3);
    EXPECT_EQ(Read2(frame, length - 1).state, FrameSpan::kIncomplete);
    EXPECT_EQ(Read2(frame, 2).state, FrameSpan::kIncomplete);
    EXPECT_EQ(RawIdAt(frame.data(), length), 2);
    EXPECT_EQ(RawIdAt(frame.data(), 2), -1);
  }
}

TEST(FrameHeader, RefusesTwoBytesWithoutAPayload) {
  EXPECT_EQ(Read2(TwoByte(2, 3), 3).state, FrameSpan::kNoFrame);
  EXPECT_EQ(RawIdAt(TwoByte(2, 3).data(), 3), -1);
  EXPECT_EQ(Read2({0x00, 0xfb, 2, 0}, 4).state, FrameSpan::kNoFrame);
  EXPECT_EQ(RawIdAt(Bytes{0x00, 0xfb, 2, 0}.data(), 4), -1);
}

TEST(FrameHeader, TakesItsOwnIdAndBothOfOpus) {
  for (const int own : {2, 22, 50, 51, 52, 54}) {
    for (int id = 0; id < 256; ++id) {
      const FrameHeader header({FindVariant(own), 16000, 1});
      const Bytes frame = {0x02, 0xfc, static_cast<unsigned char>(id), 0};
      const bool opus = (own == 50 || own == 51) && (id == 50 || id == 51);
      EXPECT_EQ(header.Read(frame.data(), 4).state,
                own == id || opus ? FrameSpan::kWhole : FrameSpan::kNoFrame)
          << own << " of " << id;
    }
  }
}

TEST(FrameHeader, BareIsAllThatIsThere) {
  const CodecVariant bare = {0, kAudioCodecUnknown, Coder::kSpeex, 8, 15200, Framing::kBare};
  const FrameHeader header({&bare, 8000, 1});
  EXPECT_EQ(header.bytes(), 0);
  const Bytes data(1023);
  EXPECT_EQ(header.Read(data.data(), 0).state, FrameSpan::kNoFrame);
  EXPECT_EQ(header.Read(data.data(), 1).state, FrameSpan::kWhole);
  EXPECT_EQ(header.Read(data.data(), 1022).packetBytes, 1022);
  EXPECT_EQ(header.Read(data.data(), 1023).state, FrameSpan::kNoFrame);
}

}  // namespace desktop
