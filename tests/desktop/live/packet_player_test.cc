#include "desktop/live/packet_player.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/live/packets.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/talk.h"
#include "support/voice.h"

using testing::HasSubstr;
using testing::SizeIs;

namespace {

bool IsThere(int rawId) { return desktop::IsBuiltIn(desktop::FindVariant(rawId)->coder); }

// The sharpest bend of a wave: a click is one.
int SharpestBend(const std::vector<short>& samples) {
  int sharpest = 0;
  for (size_t i = 2; i < samples.size(); ++i) {
    sharpest = std::max(sharpest, std::abs(samples[i] - 2 * samples[i - 1] + samples[i - 2]));
  }
  return sharpest;
}

size_t SilentAtTheEnd(const std::vector<short>& samples) {
  const auto last = std::find_if(samples.rbegin(), samples.rend(), [](short s) { return s != 0; });
  return static_cast<size_t>(last - samples.rbegin());
}

}  // namespace

TEST(PacketPlayer, PlaysWhatWasPacked) {
  const std::vector<short> talk = Babble(16000, 2);
  for (const int rawId : {0, 2, 3, 50, 52, 35, 46, 38, 39, 43, 1}) {
    if (!IsThere(rawId)) continue;
    FedPackets fed(rawId, Pack(rawId, talk, 16000).packets);
    const std::vector<short> played = Play(fed, 2000, 16000);
    EXPECT_GT(FindLag(talk, played, 4000).agreement, 0.75) << rawId;
  }
}

// The first half is as late as the second.
TEST(PacketPlayer, DoesNotDrift) {
  const std::vector<short> talk = Talk(16000, 20, 1);
  FedPackets fed(52, Pack(52, talk, 16000).packets);
  const std::vector<short> played = Play(fed, 20000, 44100, 2);
  FedPackets again(52, Pack(52, talk, 16000).packets);
  const std::vector<short> at16k = Play(again, 20000, 16000);
  ASSERT_THAT(played, SizeIs(20 * 88200));
  const auto lag = [&](size_t from) {
    const auto second = [from](const std::vector<short>& s) {
      return std::vector<short>(&s[from], &s[from] + 16000);
    };
    return FindLag(second(talk), second(at16k), 1000).samples;
  };
  EXPECT_EQ(lag(0), lag(19 * 16000));
}

TEST(PacketPlayer, ConcealsLostFramesWithoutClicks) {
  for (const int rawId : {0, 2, 3, 50, 52, 35, 46, 39, 43}) {
    if (!IsThere(rawId)) continue;
    const KeptPackets kept = Pack(rawId, SungNote(220, 48000, 3), 48000);
    FedPackets whole(rawId, kept.packets);
    FedPackets lossy(rawId, kept.packets);
    FedPackets broken(rawId, kept.packets);
    for (size_t i = 10; i < kept.packets.size(); i += 20) {
      lossy.lost[i] = true;
      std::fill(broken.packets[i].begin(), broken.packets[i].end(), uint8_t{0});
    }
    const std::vector<short> good = Play(whole, 2900, 44100);
    for (FedPackets* fed : {&lossy, &broken}) {
      const std::vector<short> played = Play(*fed, 2900, 44100);
      EXPECT_LT(SharpestBend(played), 1.5 * SharpestBend(good)) << rawId;
      EXPECT_GT(Level(played), 0.85 * Level(good)) << rawId;               // No holes.
      EXPECT_LE(std::abs(FindLag(good, played, 50).samples), 2) << rawId;  // Nor less sound.
    }
  }
}

TEST(PacketPlayer, FadesOutWhenFramesStopAndBackInWhenTheyComeAgain) {
  const KeptPackets kept = Pack(50, SungNote(220, 16000, 2), 16000);
  FedPackets fed(50, kept.packets);
  // Half a second in which there is nothing.
  fed.packets.insert(fed.packets.begin() + 50, 50, {});
  fed.lost.resize(fed.packets.size());
  const std::vector<short> played = Play(fed, 3500, 16000);

  const auto silent = [&](double from, double to) {
    return std::all_of(played.begin() + static_cast<int>(from * 16000),
                       played.begin() + static_cast<int>(to * 16000),
                       [](short s) { return s == 0; });
  };
  EXPECT_FALSE(silent(0.9, 1));
  EXPECT_TRUE(silent(1.25, 1.35));
  EXPECT_FALSE(silent(1.5, 1.6));
  EXPECT_GT(SilentAtTheEnd(played), 8000U);
  FedPackets whole(50, kept.packets);
  EXPECT_LT(SharpestBend(played), 2 * SharpestBend(Play(whole, 900, 16000)));
}

TEST(PacketPlayer, PullsNoMoreThanItNeedsAndOncePer10MsWhenThereIsNothing) {
  const KeptPackets kept = Pack(50, Babble(16000, 1), 16000);
  FedPackets fed(50, kept.packets);
  desktop::PacketPlayer player(&fed, 3, 16000, 1);
  player.Work(0);
  EXPECT_EQ(fed.pulls, 4);  // 80 ms.
  player.Work(0);
  EXPECT_EQ(fed.pulls, 4);
  short block[320];
  player.Render(block, 320);
  player.Work(0);
  EXPECT_EQ(fed.pulls, 5);

  FedPackets nothing(50, {});
  Play(nothing, 100, 16000);
  EXPECT_EQ(nothing.pulls, 10);
}

// A frame without sound is no reason to ask for the next one at once: there is no end to them.
TEST(PacketPlayer, PullsOncePer10MsWhileFramesHoldNoSound) {
  const CapturedStderr log;
  FedPackets empty(50, std::vector<KeptPackets::Packet>(1000, {{0xfc}, vadResultIsUnknown, 0}));
  empty.emptyTo = 1000;
  Play(empty, 100, 16000);
  EXPECT_EQ(empty.pulls, 10);

  FedPackets unknown(9, std::vector<KeptPackets::Packet>(1000, {{0xfc}, vadResultIsUnknown, 0}));
  Play(unknown, 100, 16000);
  EXPECT_EQ(unknown.pulls, 10);
}

// What came without sound is ridden over as what did not come, and then the sound goes on.
TEST(PacketPlayer, GoesOnAfterFramesWithoutSound) {
  const KeptPackets kept = Pack(50, SungNote(220, 16000, 2), 16000);
  FedPackets fed(50, kept.packets);
  FedPackets late(50, kept.packets);
  late.packets.insert(late.packets.begin() + 40, 3, {});
  late.lost.resize(late.packets.size());
  fed.packets.insert(fed.packets.begin() + 40, 3, {0xfc});
  fed.lost.resize(fed.packets.size());
  fed.emptyFrom = 40;
  fed.emptyTo = 43;
  EXPECT_EQ(Play(fed, 1500, 16000), Play(late, 1500, 16000));
}

TEST(PacketPlayer, TellsItsOwnerHowItIsDoing) {
  FedPackets fed(50, Pack(50, Babble(16000, 1), 16000).packets);
  fed.lost[20] = true;
  desktop::PacketPlayer player(&fed, 0, 16000, 1);
  std::vector<short> block(160);
  for (int i = 0; i < 90; ++i) {
    player.Work(25);
    player.Render(block.data(), block.size());
  }
  EXPECT_EQ(fed.firstPulls, 1);
  EXPECT_EQ(fed.feedbacks.front().playDelayMS, 25);
  EXPECT_EQ(fed.feedbacks[3].playDelayMS, 25 + 60);  // Three frames wait.
  for (const FramePlayerFeedbackInfo& feedback : fed.feedbacks) {
    EXPECT_FALSE(feedback.acceleratePlay || feedback.stretchPlay || feedback.fasterPlayOn);
    EXPECT_EQ(feedback.accelerateMS + feedback.stretchMS, 0);
    EXPECT_FALSE(feedback.isFakeAudioFrame);  // The frame after the lost one is there.
  }
  EXPECT_THAT(fed.volumes, SizeIs(9));
  EXPECT_THAT(fed.times, SizeIs(9));
  const desktop::PacketPlayer::Counts counts = player.GetCounts();
  EXPECT_EQ(counts.played, fed.next - 1);
  EXPECT_EQ(counts.concealed, 1U);
  EXPECT_EQ(counts.underruns, 0U);
  EXPECT_NEAR(counts.delayMs, 25 + 65, 5);  // 60 or 70 ms wait.
}

// What comes late is heard whole: the wait is taken from what lies ahead, without a hole.
TEST(PacketPlayer, WaitsForAFrameThatIsLate) {
  const KeptPackets kept = Pack(50, SungNote(220, 16000, 2), 16000);
  FedPackets late(50, kept.packets);
  late.packets.insert(late.packets.begin() + 40, 3, {});  // Three pulls without an answer.
  late.lost.resize(late.packets.size());
  FedPackets whole(50, kept.packets);
  EXPECT_EQ(Play(late, 1500, 16000), Play(whole, 1500, 16000));
}

TEST(PacketPlayer, ReportsNoMoreOnceItsOwnerHasHadEnough) {
  FedPackets fed(50, Pack(50, Babble(16000, 1), 16000).packets);
  fed.wantsMore = false;
  Play(fed, 1000, 16000);
  EXPECT_THAT(fed.volumes, SizeIs(1));
  EXPECT_THAT(fed.times, SizeIs(1));
}

TEST(PacketPlayer, CountsAnUnderrunOnlyWhileFramesCome) {
  FedPackets fed(50, Pack(50, Babble(16000, 2), 16000).packets);
  desktop::PacketPlayer player(&fed, 0, 16000, 1);
  std::vector<short> block(160);
  for (int i = 0; i < 10; ++i) player.Render(block.data(), block.size());
  EXPECT_EQ(player.GetCounts().underruns, 0U);
  player.Work(0);
  for (int i = 0; i < 10; ++i) player.Render(block.data(), block.size());  // 80 ms waited.
  EXPECT_EQ(player.GetCounts().underruns, 2U);
  for (int i = 0; i < 300; ++i) {
    player.Work(0);
    player.Render(block.data(), block.size());
  }
  EXPECT_EQ(player.GetCounts().underruns, 2U);  // None at the end.
}

TEST(PacketPlayer, SurvivesFramesThatAreNone) {
  FedPackets fed(50, Pack(50, Babble(16000, 1), 16000).packets);
  fed.packets.insert(fed.packets.begin() + 5, std::vector<uint8_t>(1025, 1));  // Cut off.
  fed.packets.insert(fed.packets.begin() + 7, std::vector<uint8_t>(1024, 0xff));
  fed.packets.insert(fed.packets.begin() + 9, std::vector<uint8_t>(1, 0xfc));
  fed.lost.resize(fed.packets.size());
  const CapturedStderr log;
  EXPECT_GT(Level(Play(fed, 800, 16000)), 300);
  EXPECT_THAT(log.Lines(), SizeIs(1));

  fed.rawId = 9;
  fed.next = 0;
  EXPECT_EQ(Level(Play(fed, 100, 16000)), 0);
  EXPECT_THAT(log.Lines(), SizeIs(2));
  EXPECT_THAT(log.Text(), HasSubstr(" player: no codec for raw id 9"));
}

TEST(PacketPlayer, FollowsAChangeOfCodec) {
  const KeptPackets first = Pack(50, SungNote(220, 16000, 0.5), 16000);
  FedPackets fed(50, first.packets);
  desktop::PacketPlayer player(&fed, 0, 16000, 1);
  std::vector<short> played(16000);
  for (size_t at = 0; at < played.size(); at += 160) {
    if (fed.next == fed.packets.size() && fed.rawId == 50) {
      const KeptPackets second = Pack(0, SungNote(330, 16000, 1), 16000);
      fed.packets.clear();
      for (const KeptPackets::Packet& packet : second.packets) fed.packets.push_back(packet.bytes);
      fed.lost.assign(fed.packets.size(), false);
      fed.next = 0;
      fed.rawId = 0;
    }
    player.Work(0);
    player.Render(&played[at], 160);
  }
  EXPECT_LT(
      std::abs(CentsOff(std::vector<short>(played.begin(), played.begin() + 7000), 220, 16000)), 5);
  EXPECT_LT(std::abs(CentsOff(std::vector<short>(played.begin() + 9600, played.end()), 330, 16000)),
            5);
}

TEST(PacketPlayer, AllocatesNothingPerBlock) {
  FedPackets fed(50, Pack(50, Babble(16000, 2), 16000).packets);
  fed.feedbacks.reserve(1000);
  fed.wantsMore = false;
  desktop::PacketPlayer player(&fed, 0, 44100, 2);
  std::vector<short> block(882);
  const auto run = [&](int blocks) {
    for (int i = 0; i < blocks; ++i) {
      player.Work(0);
      player.Render(block.data(), 441);
    }
  };
  run(20);
  const size_t before = AllocationCount();
  run(150);
  EXPECT_EQ(AllocationCount(), before);
}
