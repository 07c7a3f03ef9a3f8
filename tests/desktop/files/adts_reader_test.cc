#include "desktop/files/adts_reader.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using desktop::AdtsReader;

// A packet of so many bytes, header included, whose other bytes are all `fill`.
std::string Packet(size_t bytes, char fill = 'a') {
  std::string packet(bytes, fill);
  const unsigned char header[] = {0xff,
                                  0xf1,
                                  0x50,
                                  static_cast<unsigned char>(0x80 | bytes >> 11),
                                  static_cast<unsigned char>(bytes >> 3),
                                  static_cast<unsigned char>((bytes & 7) << 5 | 0x1f),
                                  0xfc};
  return packet.replace(0, sizeof header, reinterpret_cast<const char*>(header), sizeof header);
}

// A tag of so many bytes behind its head.
std::string Tag(size_t bytes) {
  std::string tag("ID3\4\0\0", 6);
  for (const int shift : {21, 14, 7, 0}) tag += static_cast<char>(bytes >> shift & 0x7f);
  return tag + std::string(bytes, 't');
}

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

std::unique_ptr<FILE, CloseFile> FileOf(const std::string& bytes) {
  std::unique_ptr<FILE, CloseFile> file(tmpfile());
  fwrite(bytes.data(), 1, bytes.size(), file.get());
  return file;
}

bool IsAdtsFile(const std::string& bytes) {
  const auto file = FileOf(bytes);
  const bool is = desktop::IsAdts(file.get());
  EXPECT_EQ(ftello(file.get()), 0);
  return is;
}

struct Found {
  std::vector<std::string> packets;
  uint64_t end = 0;
};

Found PacketsIn(const std::string& bytes) {
  const auto file = FileOf(bytes);
  AdtsReader reader(file.get());
  EXPECT_EQ(reader.End(), 0U);
  Found found;
  const unsigned char* packet = nullptr;
  while (const size_t count = reader.Next(&packet)) {
    found.packets.emplace_back(reinterpret_cast<const char*>(packet), count);
  }
  found.end = reader.End();
  return found;
}

TEST(IsAdts, AsksForAWholeHeaderAndAnotherOneAfterItsPacket) {
  const std::string packet = Packet(20);
  EXPECT_TRUE(IsAdtsFile(packet));
  EXPECT_TRUE(IsAdtsFile(packet + packet));
  EXPECT_TRUE(IsAdtsFile(packet.substr(0, 7)));  // The beginning of a packet that was cut off.
  EXPECT_FALSE(IsAdtsFile(packet.substr(0, 6)));
  EXPECT_FALSE(IsAdtsFile(""));
  EXPECT_TRUE(IsAdtsFile(packet + "sixsix"));
  EXPECT_FALSE(IsAdtsFile(packet + "seven 7"));
  EXPECT_TRUE(IsAdtsFile(packet + packet.substr(0, 7)));
}

TEST(IsAdts, LooksAtTheBitsThatAllHeadersShare) {
  for (const auto& [at, bits] : {std::pair<size_t, char>{0, 1}, {1, '\x10'}, {1, 2}, {1, 4}}) {
    std::string packet = Packet(20);
    packet[at] = static_cast<char>(packet[at] ^ bits);
    EXPECT_FALSE(IsAdtsFile(packet)) << at << " " << static_cast<int>(bits);
  }
  std::string other = Packet(20);
  other[1] = static_cast<char>(other[1] ^ 9);  // MPEG-2, with a checksum.
  EXPECT_TRUE(IsAdtsFile(other));
}

TEST(IsAdts, KnowsAPacketThatIsNoMoreThanItsHeader) {
  EXPECT_FALSE(IsAdtsFile(Packet(7)));
  EXPECT_TRUE(IsAdtsFile(Packet(8)));
  EXPECT_TRUE(IsAdtsFile(Packet(8191)));
}

TEST(IsAdts, LooksBehindATag) {
  for (const size_t bytes : {0U, 1U, 127U, 128U, 300U, 20000U}) {
    EXPECT_TRUE(IsAdtsFile(Tag(bytes) + Packet(20) + Packet(30))) << bytes;
    EXPECT_FALSE(IsAdtsFile(Tag(bytes) + "x" + Packet(20) + Packet(30))) << bytes;
  }
  // As a tag that is made while its length is not known has it: bits that do not count.
  std::string tag = Tag(300);
  for (size_t i = 6; i < 10; ++i) tag[i] = static_cast<char>(tag[i] | 0x80);
  EXPECT_TRUE(IsAdtsFile(tag + Packet(20)));
}

TEST(AdtsReader, GivesEachPacketWholeWhateverItsLength) {
  std::vector<std::string> packets;
  std::string bytes;
  for (const size_t length :
       {8U, 9U, 255U, 256U, 2047U, 2048U, 8190U, 8191U, 8191U, 8191U, 8U, 8191U, 20U}) {
    packets.push_back(Packet(length, static_cast<char>('a' + packets.size())));
    bytes += packets.back();
  }
  const Found found = PacketsIn(bytes);
  EXPECT_EQ(found.packets, packets);
  EXPECT_EQ(found.end, bytes.size());
}

TEST(AdtsReader, PassesOverWhatIsNoPacket) {
  const std::string one = Packet(20, 'a');
  const std::string two = Packet(30, 'b');
  const Found found = PacketsIn("x" + one + two + std::string(40000, 'n') + one + two + "end");
  // What is followed by something else may be no packet: the second one is not confirmed.
  EXPECT_EQ(found.packets, (std::vector<std::string>{one, one, two}));
  EXPECT_EQ(found.end, 1U + 50 + 40000 + 50);
}

TEST(AdtsReader, GivesNoPacketThatWasCutOff) {
  const std::string one = Packet(20, 'a');
  for (size_t left = 0; left < 30; ++left) {
    const Found found = PacketsIn(one + Packet(30, 'b').substr(0, left));
    EXPECT_EQ(found.packets, std::vector<std::string>{one}) << left;
    EXPECT_EQ(found.end, 20U) << left;
  }
}

TEST(AdtsReader, GivesALastPacketBeforeLessThanAHeader) {
  const std::string one = Packet(20, 'a');
  EXPECT_EQ(PacketsIn(one + "sixsix").packets, std::vector<std::string>{one});
  EXPECT_EQ(PacketsIn(one + "seven 7").packets, std::vector<std::string>{});
}

}  // namespace
