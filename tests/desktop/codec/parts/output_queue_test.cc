#include "desktop/codec/parts/output_queue.h"

#include <gmock/gmock.h>

#include <string>

#include "desktop/codec/parts/codec_table.h"

namespace desktop {
namespace {

// What one call hands over, in a buffer of exactly its room.
class Call {
 public:
  Call(OutputQueue& queue, size_t room) : m_queue(queue), m_out(room) {
    queue.Begin(m_out.data(), room);
  }

  std::string Given() const { return {m_out.begin(), m_out.begin() + Bytes()}; }

 private:
  std::ptrdiff_t Bytes() const { return static_cast<std::ptrdiff_t>(m_queue.given()); }

  const OutputQueue& m_queue;
  std::vector<unsigned char> m_out;
};

bool Add(OutputQueue& queue, const std::string& bytes) {
  return queue.Add(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

// A packet of id 2 of 4 + `more` bytes.
std::string Packet(char fill, int more = 0) {
  return std::string{static_cast<char>(2 + more), '\xfc', '\2'} +
         std::string(static_cast<size_t>(1 + more), fill);
}

OutputQueue Packets() { return OutputQueue(PacketHeader({FindVariant(2), 16000, 1})); }

}  // namespace

TEST(OutputQueue, GivesAtOnceWhatJustFits) {
  OutputQueue frames(4);
  const Call call(frames, 8);
  EXPECT_TRUE(Add(frames, "abcd"));
  EXPECT_TRUE(Add(frames, "efgh"));
  EXPECT_EQ(call.Given(), "abcdefgh");
}

TEST(OutputQueue, GivesAPacketAtOnceThatJustFits) {
  OutputQueue packets = Packets();
  const Call call(packets, 9);
  EXPECT_TRUE(Add(packets, Packet('a')));
  EXPECT_TRUE(Add(packets, Packet('b', 1)));
  EXPECT_EQ(call.Given(), Packet('a') + Packet('b', 1));
}

TEST(OutputQueue, GivesNothingWhereNothingWaits) {
  OutputQueue frames(4);
  OutputQueue packets = Packets();
  for (OutputQueue* const queue : {&frames, &packets}) {
    EXPECT_EQ(Call(*queue, 100).Given(), "");
    EXPECT_EQ(Call(*queue, 0).Given(), "");
  }
}

TEST(OutputQueue, KeepsTheFramesThatFindNoRoomInOrder) {
  OutputQueue frames(4);
  {
    const Call call(frames, 7);
    EXPECT_TRUE(Add(frames, "abcdefgh"));
    EXPECT_TRUE(Add(frames, "ijkl"));
    EXPECT_EQ(call.Given(), "abcd");
  }
  {
    const Call call(frames, 6);
    // There is room for half a frame, and this one comes after those that wait.
    EXPECT_TRUE(Add(frames, "mnop"));
    EXPECT_EQ(call.Given(), "efgh");
  }
  EXPECT_EQ(Call(frames, 3).Given(), "");
  EXPECT_EQ(Call(frames, 100).Given(), "ijklmnop");
  EXPECT_EQ(Call(frames, 100).Given(), "");
}

TEST(OutputQueue, NeverCutsAPacket) {
  OutputQueue packets = Packets();
  {
    const Call call(packets, 7);
    EXPECT_TRUE(Add(packets, Packet('a')));
    EXPECT_TRUE(Add(packets, Packet('b', 1)));
    EXPECT_TRUE(Add(packets, Packet('c')));
    EXPECT_EQ(call.Given(), Packet('a')) << "b would be cut, and c stands after b";
  }
  EXPECT_EQ(Call(packets, 4).Given(), "");
  EXPECT_EQ(Call(packets, 5).Given(), Packet('b', 1)) << "just fits";
  EXPECT_EQ(Call(packets, 4).Given(), Packet('c'));
  EXPECT_EQ(Call(packets, 4).Given(), "");
}

TEST(OutputQueue, GivesAllThatWaitsAndFits) {
  OutputQueue packets = Packets();
  {
    const Call call(packets, 0);
    for (const char fill : {'a', 'b', 'c'}) EXPECT_TRUE(Add(packets, Packet(fill)));
    EXPECT_EQ(call.Given(), "");
  }
  EXPECT_EQ(Call(packets, 11).Given(), Packet('a') + Packet('b'));
  EXPECT_EQ(Call(packets, 11).Given(), Packet('c'));
}

TEST(OutputQueue, HoldsOneMebibyteAndRefusesMore) {
  OutputQueue frames(1);
  const std::string half(size_t{1} << 19, 'x');
  frames.Begin(nullptr, 0);
  EXPECT_TRUE(Add(frames, half));
  EXPECT_TRUE(Add(frames, half));
  EXPECT_FALSE(Add(frames, "y"));
  EXPECT_TRUE(Add(frames, "")) << "nothing is no more";
  EXPECT_EQ(Call(frames, 1).Given(), "x");
  frames.Begin(nullptr, 0);
  EXPECT_TRUE(Add(frames, "y"));
  EXPECT_FALSE(Add(frames, "y"));
}

}  // namespace desktop
