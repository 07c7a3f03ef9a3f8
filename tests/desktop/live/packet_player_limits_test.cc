// A lone frame and a long jump: where the player's waits and its concealment end.

#include <gmock/gmock.h>

#include <algorithm>

#include "desktop/live/packet_player.h"
#include "desktop/live/packets.h"
#include "support/voice.h"

namespace {

// The first blocks that are not silent, each after at least 100 ms of silence.
std::vector<size_t> Onsets(const std::vector<short>& played, size_t block) {
  std::vector<size_t> onsets;
  size_t silent = 10;
  for (size_t at = 0; at + block <= played.size(); at += block) {
    const bool sounds =
        std::any_of(&played[at], &played[at] + block, [](short s) { return s != 0; });
    if (sounds && silent >= 10) onsets.push_back(at / block);
    silent = sounds ? 0 : silent + 1;
  }
  return onsets;
}

}  // namespace

// One frame is less than is waited for: it is heard after 80 ms, counted from the frame, and so is
// the next one that comes alone.
TEST(PacketPlayer, PlaysALoneFrameOnceItHasWaited80Ms) {
  const KeptPackets kept = Pack(50, SungNote(220, 16000, 1), 16000);
  FedPackets fed(50, {});
  for (int i = 0; i < 120; ++i) fed.packets.emplace_back();
  fed.packets[20] = fed.packets[70] = kept.packets[20].bytes;
  fed.lost.resize(fed.packets.size());
  // Each pull without an answer is a round; the round that has a frame pulls once more.
  EXPECT_THAT(Onsets(Play(fed, 1200, 16000), 160), testing::ElementsAre(20 + 7, 69 + 7));
}

TEST(PacketPlayer, TakesAJumpOfMoreThanASecondForAnotherPlaceOfTheStream) {
  const KeptPackets kept = Pack(50, SungNote(220, 16000, 2), 16000);
  for (const auto& [lost, concealed] : {std::pair(50, 50U), {51, 0U}}) {
    FedPackets fed(50, kept.packets);
    std::fill_n(fed.lost.begin() + 4, lost, true);
    desktop::PacketPlayer player(&fed, 0, 16000, 1);
    std::vector<short> block(160);
    for (int i = 0; i < 10; ++i) {
      player.Work(0);
      player.Render(block.data(), block.size());
    }
    EXPECT_EQ(player.GetCounts().concealed, concealed) << lost;
  }
}

// From a pull until the loudspeaker, which takes 37 ms: the second frame waits for the first one.
TEST(PacketPlayer, TellsTheMeanDelayOfWhatItPulled) {
  const KeptPackets kept = Pack(50, SungNote(220, 16000, 1), 16000);
  FedPackets fed(50, {});
  desktop::PacketPlayer player(&fed, 0, 16000, 1);
  EXPECT_EQ(player.GetCounts().delayMs, 0U);
  const unsigned means[] = {37, (37 + 57) / 2};
  for (const unsigned mean : means) {
    fed.packets.push_back(kept.packets[fed.packets.size()].bytes);
    fed.lost.push_back(false);
    player.Work(37);
    EXPECT_EQ(player.GetCounts().delayMs, mean);
  }
}
