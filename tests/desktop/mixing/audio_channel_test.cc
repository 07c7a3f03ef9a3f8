#include "engine_api/mixing/audio_channel.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>

#include "desktop/devices/audio_device.h"
#include "desktop/live/file_player.h"
#include "desktop/live/packets.h"
#include "desktop/live/played.h"
#include "desktop/live/wait.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/signals.h"
#include "support/talk.h"
#include "support/temporary_directory.h"
#include "support/voice.h"
#include "support/wav_bytes.h"

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

class AudioChannel : public testing::Test {
 protected:
  AudioChannel() { desktop::UseNullDevices(1); }
  ~AudioChannel() override { m_channel->Destroy(); }

  bool StartPacker(IAudioFramePackerNotify* notify, int rawId) {
    return m_channel->StartPacker(notify, rawId, 48000, 48000, 1, 2);
  }

  // Packs `count` frames, or a few more, of what a singer sings into the microphone path.
  KeptPackets PackSinger(int rawId, int count) {
    WriteFile("singer.wav", WavBytes({.rate = 48000}, SungNote(220, 48000, 4)));
    desktop::FilePlayer singer;
    singer.SetFeedBack(AudioSourceTypeOuterPCM);
    EXPECT_EQ(singer.Open("singer.wav"), desktop::FileFault::kNone);
    singer.Play();
    EXPECT_TRUE(WaitUntil([&] { return singer.PlayedMs() > 200; }));
    KeptPackets kept;
    EXPECT_TRUE(StartPacker(&kept, rawId));
    EXPECT_TRUE(m_channel->OpenCapture());
    EXPECT_TRUE(WaitUntil([&] { return kept.count >= count; }));
    m_channel->StopPacker();
    m_channel->CloseCapture();
    return kept;
  }

  std::optional<desktop::StepClock> m_clock{std::in_place};
  TemporaryDirectory m_directory;
  IAudioChannel* const m_channel = IAudioChannel::Create();
};

}  // namespace

TEST_F(AudioChannel, PacksWhatIsHeardAndPlaysItBack) {
  std::vector<short> heard;
  std::string log;
  {
    const CapturedStderr lines;
    const KeptPackets kept = PackSinger(51, 60);
    FedPackets fed(51, kept.packets);
    {
      const Played played;
      ASSERT_TRUE(m_channel->StartPlay(&fed, 0, 44100, 2));
      ASSERT_TRUE(WaitUntil([&] { return played.Sound().size() > 2 * 44000; }));
      m_channel->StopPlay(0);
      heard = Channel(played.Sound(), 2, 0);
    }
    log = lines.Text();
    fputs(log.c_str(), stderr);
  }
  ASSERT_GT(heard.size(), 44000U);
  const std::vector<short> sung(heard.begin() + 24000, heard.begin() + 44000);
  EXPECT_NEAR(CentsOff(sung, 220, 48000), 0, 3);
  EXPECT_GT(FindLag(SungNote(220, 48000, 0.3), sung, 300).agreement, 0.9);
  EXPECT_THAT(log, ContainsRegex(" packer: .* frames, 0 left out, 0 too long, 0 samples dropped"));
  EXPECT_THAT(
      log, ContainsRegex(" player: stream 0, .* 0 concealed, 0 refused, 0 dropped, 0 underruns"));
  // A frame of 20 ms; then what waits in the player.
  EXPECT_THAT(log,
              ContainsRegex(" channel: loop delay [0-9]+ ms: 20 to a packed frame, [4-9][0-9] "));
}

TEST_F(AudioChannel, OpensTheMicrophoneInTheFormatOfItsPacker) {
  KeptPackets kept;
  ASSERT_TRUE(m_channel->OpenCapture());
  ASSERT_TRUE(m_channel->StartPacker(&kept, 50, 16000, 8000, 2, 2));
  EXPECT_TRUE(WaitUntil([&] { return kept.count >= 15; }));
  m_channel->StopPacker();
  // As much of the microphone's time has passed as the frames say.
  EXPECT_EQ(kept.packets[14].timeMs, 280U);
}

TEST_F(AudioChannel, OpensTheMicrophoneAnewForAnotherFormatOnly) {
  KeptPackets kept;
  ASSERT_TRUE(m_channel->OpenCapture());
  struct {
    int rate;
    int channels;
    const char* opens;  // The start of the microphone's line; null for none.
  } const steps[] = {{48000, 1, nullptr},
                     {48000, 2, " microphone: 48000 Hz, 2 channels"},
                     {48000, 2, nullptr},
                     {16000, 2, " microphone: 16000 Hz, 2 channels"},
                     {16000, 1, " microphone: 16000 Hz, 1 channels"}};
  SleepMs(20);
  for (const auto& step : steps) {
    const CapturedStderr log;
    ASSERT_TRUE(m_channel->StartPacker(&kept, 50, step.rate, step.rate, step.channels, 2));
    const int before = kept.count;
    SleepMs(100);
    EXPECT_GE(kept.count, before + 3);
    if (step.opens != nullptr) {
      EXPECT_THAT(log.Text(), HasSubstr(step.opens));
    } else {
      EXPECT_THAT(log.Text(), testing::Not(HasSubstr(" microphone: ")));
    }
  }
}

// A silent microphone is left out after 200 ms, until that is asked for no more.
TEST_F(AudioChannel, LeavesOutSilenceWhileItsOwnerWantsThat) {
  const CapturedStderr log;
  KeptPackets kept;
  m_channel->EnablePackerVad(true);
  ASSERT_TRUE(StartPacker(&kept, 50));
  ASSERT_TRUE(m_channel->OpenCapture());
  SleepMs(500);
  EXPECT_LE(kept.count, 10);
  m_channel->EnablePackerVad(false);
  EXPECT_TRUE(WaitUntil([&] { return kept.count >= 20; }));
  m_channel->StopPacker();
  EXPECT_THAT(log.Text(), ContainsRegex(" packer: [0-9]+ frames, [1-9][0-9]* left out"));
}

TEST_F(AudioChannel, RefusesWhatItCannotDo) {
  KeptPackets kept;
  FedPackets fed(50, {});
  EXPECT_FALSE(StartPacker(&kept, -1));
  EXPECT_FALSE(StartPacker(nullptr, 50));
  EXPECT_FALSE(m_channel->StartPacker(&kept, 50, 96000, 48000, 1, 2));
  EXPECT_FALSE(m_channel->StartPacker(&kept, 50, 48000, 0, 1, 2));
  EXPECT_FALSE(m_channel->StartPacker(&kept, 50, 48000, 48000, 3, 2));
  EXPECT_FALSE(m_channel->StartPacker(&kept, 50, 48000, 48000, 1, 4));
  EXPECT_FALSE(m_channel->StartPlay(nullptr, 0, 44100, 2));
  EXPECT_FALSE(m_channel->StartPlay(&fed, 0, 0, 2));
  EXPECT_FALSE(m_channel->StartPlay(&fed, 0, 44100, 0));
  m_channel->StopPacker();
  m_channel->StopPlay(0);
  m_channel->StopPlay(77);
  m_channel->CloseCapture();
}

// The samples end with a codec that is not there: the capture runs on without calls.
TEST_F(AudioChannel, PlaysSilenceWhileItsOwnerHasNothing) {
  FedPackets nothing(255, {});
  ASSERT_TRUE(m_channel->StartPlay(&nothing, 0, 44100, 2));
  SleepMs(300);
  m_channel->StopPlay(0);
  EXPECT_GT(nothing.pulls, 1);
  EXPECT_LE(nothing.pulls, 40);
}

TEST_F(AudioChannel, PlaysSeveralStreams) {
  FedPackets one(50, Pack(50, SungNote(220, 16000, 1), 16000).packets);
  FedPackets other(0, Pack(0, SungNote(330, 16000, 1), 16000).packets);
  const Played played;
  ASSERT_TRUE(m_channel->StartPlay(&one, 1, 44100, 2));
  ASSERT_TRUE(m_channel->StartPlay(&other, 2, 44100, 2));
  ASSERT_TRUE(WaitUntil([&] { return played.Sound().size() > 2 * 24000; }));
  m_channel->StopPlay(1);
  m_channel->StopPlay(2);
  const std::vector<short> heard = Channel(played.Sound(), 2, 0);
  const std::vector<double> sound =
      ToDoubles(std::vector<short>(heard.begin() + 9600, heard.begin() + 24000));
  EXPECT_GT(AmplitudeAt(sound, 220, 48000), 0.02);
  EXPECT_GT(AmplitudeAt(sound, 330, 48000), 0.02);
}

// What is freed right after a stop must not be called: the address or thread checkers see it.
TEST_F(AudioChannel, CallsNobodyAfterItWasStopped) {
  m_clock.reset();  // One that stands still would keep threads from meeting.
  const KeptPackets kept = Pack(50, SungNote(220, 16000, 1), 16000);
  ASSERT_TRUE(m_channel->OpenCapture());
  std::atomic<bool> ends = false;
  std::thread load([&] {
    while (!ends) Pack(52, std::vector<short>(4800), 48000);
  });
  for (int i = 0; i < 12; ++i) {
    auto packer = std::make_unique<KeptPackets>();
    auto player = std::make_unique<FedPackets>(50, kept.packets);
    ASSERT_TRUE(StartPacker(packer.get(), i % 2 == 0 ? 50 : 0));
    ASSERT_TRUE(m_channel->StartPlay(player.get(), 0, 44100, 2));
    SleepMs(5 * i);
    m_channel->StopPacker();
    packer.reset();
    m_channel->StopPlay(0);
    player.reset();
  }
  auto packer = std::make_unique<KeptPackets>();
  auto player = std::make_unique<FedPackets>(50, kept.packets);
  IAudioChannel* const channel = IAudioChannel::Create();
  ASSERT_TRUE(channel->StartPacker(packer.get(), 50, 48000, 48000, 1, 2));
  ASSERT_TRUE(channel->OpenCapture());
  ASSERT_TRUE(channel->StartPlay(player.get(), 0, 44100, 2));
  SleepMs(60);
  channel->Destroy();
  packer.reset();
  player.reset();
  ends = true;
  load.join();
}
