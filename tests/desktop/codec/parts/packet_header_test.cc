#include "desktop/codec/parts/packet_header.h"

#include <gmock/gmock.h>

#include "desktop/codec/parts/codec_table.h"

namespace desktop {
namespace {

using Bytes = std::vector<unsigned char>;

// An ADTS packet of `length` bytes as id 46 has it: core at 22050 Hz, two channels.
Bytes Adts(size_t length) {
  Bytes packet(length);
  PacketHeader({FindVariant(46), 44100, 2}).Write(packet.data(), length - 7);
  return packet;
}

PacketSpan Read46(const Bytes& packet, size_t size) {
  return PacketHeader({FindVariant(46), 44100, 2}).Read(packet.data(), size);
}

PacketSpan Read46(const Bytes& packet) { return Read46(packet, packet.size()); }

Bytes TwoByte(int id, size_t length) {
  Bytes packet(length);
  PacketHeader({FindVariant(id), 16000, 1}).Write(packet.data(), length - 3);
  return packet;
}

PacketSpan Read2(const Bytes& packet, size_t size) {
  return PacketHeader({FindVariant(2), 16000, 1}).Read(packet.data(), size);
}

}  // namespace

TEST(PacketHeader, ReadsTheAdtsItWrites) {
  for (const size_t length : {8U, 100U, 255U, 256U, 1029U}) {
    const Bytes packet = Adts(length);
    const PacketSpan span = Read46(packet);
    EXPECT_EQ(span.state, PacketSpan::kWhole) << length;
    EXPECT_EQ(span.packetBytes, length);
    EXPECT_EQ(span.payloadOffset, 7U);
    EXPECT_EQ(span.payloadBytes, length - 7);
    EXPECT_EQ(Read46(packet, length - 1).state, PacketSpan::kIncomplete) << length;
    for (size_t size = 0; size < 7; ++size) {
      EXPECT_EQ(Read46(packet, size).state, PacketSpan::kIncomplete);
      EXPECT_EQ(ReadAnyAdts(packet.data(), size).state, PacketSpan::kIncomplete);
    }
  }
}

// No decoder could take it, and a reader must not wait for bytes that have no room.
TEST(PacketHeader, RefusesAdtsThatIsTooLongOrEmpty) {
  EXPECT_EQ(Read46(Adts(1030)).state, PacketSpan::kNoPacket);
  EXPECT_EQ(Read46(Adts(1030), 100).state, PacketSpan::kNoPacket);
  EXPECT_EQ(ReadAnyAdts(Adts(1030).data(), 1030).state, PacketSpan::kWhole);
  EXPECT_EQ(ReadAnyAdts(Adts(8191).data(), 8191).packetBytes, 8191U);
  EXPECT_EQ(Read46(Adts(7)).state, PacketSpan::kNoPacket);
}

TEST(PacketHeader, RefusesAdtsOfSeveralBlocks) {
  for (const int blocks : {1, 2, 3}) {
    Bytes packet = Adts(100);
    packet[6] = static_cast<unsigned char>(packet[6] | blocks);
    EXPECT_EQ(Read46(packet).state, PacketSpan::kNoPacket) << blocks;
    EXPECT_EQ(ReadAnyAdts(packet.data(), 100).state, PacketSpan::kNoPacket) << blocks;
  }
}

TEST(PacketHeader, TakesEitherMpegVersionAndNoOtherSync) {
  const std::pair<int, int> wrong[] = {{0, 0x7f}, {1, 0x71}, {1, 0xe1},
                                       {1, 0xf0}, {1, 0xf3}, {1, 0xf5}};
  for (const auto& [at, value] : wrong) {
    Bytes packet = Adts(100);
    packet[static_cast<size_t>(at)] = static_cast<unsigned char>(value);
    EXPECT_EQ(Read46(packet).state, PacketSpan::kNoPacket) << at << ": " << value;
    EXPECT_EQ(ReadAnyAdts(packet.data(), 100).state, PacketSpan::kNoPacket) << at << ": " << value;
  }
  Bytes mpeg2 = Adts(100);
  mpeg2[1] = 0xf9;
  EXPECT_EQ(Read46(mpeg2).state, PacketSpan::kWhole);
}

TEST(PacketHeader, TakesAdtsOfItsRateAndChannelsAlone) {
  const Bytes own = Adts(100);
  for (int rate = 0; rate < 16; ++rate) {
    for (int channels = 0; channels < 8; ++channels) {
      Bytes packet = own;
      packet[2] = static_cast<unsigned char>(1 << 6 | rate << 2 | channels >> 2);
      packet[3] = static_cast<unsigned char>((channels & 3) << 6);
      const bool same = rate == 7 && channels == 2;  // 22050 Hz.
      EXPECT_EQ(Read46(packet).state, same ? PacketSpan::kWhole : PacketSpan::kNoPacket)
          << rate << ", " << channels;
    }
  }
}

TEST(PacketHeader, IsValidForTheRatesThatAdtsKnows) {
  const int known[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                       22050, 16000, 12000, 11025, 8000,  7350};
  CodecVariant lc = *FindVariant(35);
  lc.framing = Framing::kAdts;
  int index = 0;
  for (const int rate : known) {
    const PacketHeader header({&lc, rate, 1});
    EXPECT_TRUE(header.IsValid()) << rate;
    unsigned char bytes[kMaxHeaderBytes];
    header.Write(bytes, 10);
    EXPECT_EQ(bytes[2] >> 2 & 15, index++);
  }
  EXPECT_FALSE(PacketHeader({&lc, 12345, 1}).IsValid());
  EXPECT_TRUE(PacketHeader({FindVariant(35), 12345, 1}).IsValid())
      << "without a rate in the header";
  // The core of HE runs at half the rate.
  EXPECT_FALSE(PacketHeader({FindVariant(46), 11025, 1}).IsValid());
}

TEST(PacketHeader, ReadsTheTwoBytesItWrites) {
  for (const size_t length : {4U, 100U, 257U, 258U, 1025U}) {
    const Bytes packet = TwoByte(2, length);
    const PacketSpan span = Read2(packet, length);
    EXPECT_EQ(span.state, PacketSpan::kWhole) << length;
    EXPECT_EQ(span.packetBytes, length);
    EXPECT_EQ(span.payloadOffset, 3U);
    EXPECT_EQ(span.payloadBytes, length - 3);
    EXPECT_EQ(Read2(packet, length - 1).state, PacketSpan::kIncomplete);
    EXPECT_EQ(Read2(packet, 2).state, PacketSpan::kIncomplete);
    EXPECT_EQ(RawIdAt(packet.data(), length), 2);
    EXPECT_EQ(RawIdAt(packet.data(), 2), -1);
  }
}

TEST(PacketHeader, RefusesTwoBytesWithoutAPayload) {
  EXPECT_EQ(Read2(TwoByte(2, 3), 3).state, PacketSpan::kNoPacket);
  EXPECT_EQ(RawIdAt(TwoByte(2, 3).data(), 3), -1);
  EXPECT_EQ(Read2({0x00, 0xfb, 2, 0}, 4).state, PacketSpan::kNoPacket);
  EXPECT_EQ(RawIdAt(Bytes{0x00, 0xfb, 2, 0}.data(), 4), -1);
}

TEST(PacketHeader, TakesItsOwnIdAndBothOfOpus) {
  for (const int own : {2, 22, 50, 51, 52, 54}) {
    for (int id = 0; id < 256; ++id) {
      const PacketHeader header({FindVariant(own), 16000, 1});
      const Bytes packet = {0x02, 0xfc, static_cast<unsigned char>(id), 0};
      const bool opus = (own == 50 || own == 51) && (id == 50 || id == 51);
      EXPECT_EQ(header.Read(packet.data(), 4).state,
                own == id || opus ? PacketSpan::kWhole : PacketSpan::kNoPacket)
          << own << " of " << id;
    }
  }
}

TEST(PacketHeader, BareIsAllThatIsThere) {
  const CodecVariant bare = {0, kAudioCodecUnknown, Coder::kSpeex, 8, 15200, Framing::kBare};
  const PacketHeader header({&bare, 8000, 1});
  EXPECT_EQ(header.bytes(), 0U);
  const Bytes data(1023);
  EXPECT_EQ(header.Read(data.data(), 0).state, PacketSpan::kNoPacket);
  EXPECT_EQ(header.Read(data.data(), 1).state, PacketSpan::kWhole);
  EXPECT_EQ(header.Read(data.data(), 1022).payloadBytes, 1022U);
  EXPECT_EQ(header.Read(data.data(), 1023).state, PacketSpan::kNoPacket);
}

}  // namespace desktop
