#include "desktop/live/packet_maker.h"

#include <gmock/gmock.h>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/live/packets.h"
#include "support/captured_stderr.h"
#include "support/talk.h"
#include "support/tone.h"
#include "support/voice.h"

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

bool IsThere(int rawId) { return desktop::IsBuiltIn(desktop::FindVariant(rawId)->coder); }

}  // namespace

// Two seconds of each codec, one for each length and rate of a frame.
TEST(PacketMaker, PacksOneFrameForEachFrameLengthOfSound) {
  const std::vector<std::pair<int, size_t>> counts = {
      {0, 100}, {2, 100}, {3, 100},  {22, 100}, {50, 100}, {52, 100}, {35, 86}, {40, 93},
      {46, 43}, {38, 86}, {39, 172}, {43, 62},  {44, 125}, {1, 43},   {55, 43}};
  const std::vector<short> voice = Babble(48000, 2);
  for (const auto& [rawId, count] : counts) {
    if (!IsThere(rawId)) continue;
    EXPECT_THAT(Pack(rawId, voice, 48000).packets,
                SizeIs(testing::AllOf(testing::Ge(count - 1), testing::Le(count))))
        << rawId;
  }
}

TEST(PacketMaker, TakesAnyFormatThatIsCaptured) {
  for (const auto& [rate, channels] : {std::pair(8000, 1), std::pair(44100, 2)}) {
    const KeptPackets kept = Pack(50, SungNote(220, rate, 1, channels), rate, channels);
    FedPackets fed(50, kept.packets);
    const std::vector<short> played = Play(fed, 1000, 16000);
    EXPECT_NEAR(CentsOff(played, 220, 16000), 0, 3) << rate;
    EXPECT_GT(Level(played), 1000) << rate;
  }
}

TEST(PacketMaker, RefusesWhatNoCodecCodes) {
  KeptPackets kept;
  const CapturedStderr log;
  for (const int rawId : {-1, 7, 255, 100000}) {
    EXPECT_EQ(desktop::PacketMaker::Create(&kept, rawId, {48000, 1}), nullptr) << rawId;
  }
  EXPECT_THAT(log.Lines(), SizeIs(4));
  EXPECT_THAT(log.Text(), HasSubstr(" packer: no codec for raw id -1"));
}

TEST(PacketMaker, TellsTimeVoiceAndVolume) {
  std::vector<short> sound(16000);  // A second of silence, and one of speech.
  const std::vector<short> talk = Babble(16000, 1);
  sound.insert(sound.end(), talk.begin(), talk.end());
  const KeptPackets kept = Pack(50, sound, 16000);

  ASSERT_THAT(kept.packets, SizeIs(100));
  for (size_t i = 0; i < 100; ++i) EXPECT_EQ(kept.packets[i].timeMs, 20 * i);
  size_t active = 0;
  for (size_t i = 0; i < 100; ++i) {
    const bool voice = kept.packets[i].voice == vadResultIsActive;
    EXPECT_FALSE(voice && i < 50) << i;
    active += voice ? 1 : 0;
  }
  EXPECT_GT(active, 20U);
  ASSERT_THAT(kept.volumes, SizeIs(20));  // Ten a second.
  EXPECT_EQ(kept.volumes[5], 0U);
  EXPECT_THAT(std::vector(kept.volumes.begin() + 10, kept.volumes.end()), Each(testing::Gt(10U)));
}

TEST(PacketMaker, LeavesFramesWithoutVoiceOut) {
  KeptPackets kept;
  const auto packer = desktop::PacketMaker::Create(&kept, 50, {16000, 1});
  packer->LeaveOutSilence(true);
  std::vector<short> sound = Babble(16000, 1);
  sound.resize(48000);  // Two seconds of silence.
  packer->Put(sound.data(), 32000);
  packer->Work();
  packer->Put(sound.data() + 32000, 16000);
  packer->Work();

  const desktop::PacketMaker::Counts counts = packer->GetCounts();
  EXPECT_EQ(counts.packed, kept.packets.size());
  EXPECT_EQ(counts.packed + counts.leftOut, 150U);
  ASSERT_FALSE(kept.packets.empty());
  EXPECT_GT(counts.leftOut, 80U);
  // The end of the last word is not cut off: what is quieter than voice follows for 200 ms.
  EXPECT_NE(kept.packets.back().voice, vadResultIsActive);
}

TEST(PacketMaker, DropsWhatIsMoreThanTwoSecondsLateAndCountsIt) {
  KeptPackets kept;
  const auto packer = desktop::PacketMaker::Create(&kept, 50, {16000, 1});
  const std::vector<short> sound(16000 * 3);
  for (size_t at = 0; at < sound.size(); at += 160) packer->Put(&sound[at], 160);
  packer->Work();
  EXPECT_THAT(kept.packets, SizeIs(100));
  EXPECT_EQ(packer->GetCounts().droppedSamples, 16000U);
}

// A frame has room for 1024 bytes when it comes back; what is longer would be cut off there.
TEST(PacketMaker, DropsFramesThatAreTooLongAndCountsThem) {
  if (!IsThere(37)) GTEST_SKIP() << "libfdk-aac is not there";
  std::vector<short> noise = Hiss(44100, 2, 1, -3);
  KeptPackets kept;
  const auto packer = desktop::PacketMaker::Create(&kept, 37, {44100, 1});
  packer->Put(noise.data(), noise.size());
  packer->Work();
  const desktop::PacketMaker::Counts counts = packer->GetCounts();
  EXPECT_EQ(counts.packed, kept.packets.size());
  EXPECT_EQ(counts.packed + counts.tooLong, 86U);
  for (const KeptPackets::Packet& packet : kept.packets) EXPECT_LE(packet.bytes.size(), 1024U);
}

// From 200 ms after the last voice on: ten frames of 20 ms still come.
TEST(PacketMaker, PacksTenMoreFramesAfterTheLastVoice) {
  KeptPackets kept;
  const auto packer = desktop::PacketMaker::Create(&kept, 50, {16000, 1});
  packer->LeaveOutSilence(true);
  std::vector<short> sound = Babble(16000, 1);
  sound.resize(32000);
  packer->Put(sound.data(), 32000);
  packer->Work();
  int sinceVoice = 0;
  for (const KeptPackets::Packet& packet : kept.packets) {
    sinceVoice = packet.voice == vadResultIsActive ? 0 : sinceVoice + 1;
  }
  EXPECT_EQ(sinceVoice, 10);
}
