// Players, recorders and the loudspeaker on a clock of the test's: what comes after how long, to
// the block.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <regex>
#include <thread>

#include "desktop/live/file_player.h"
#include "desktop/live/microphone.h"
#include "desktop/live/play_feed.h"
#include "desktop/live/played.h"
#include "desktop/mixing/parts/capture_cleaning.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "support/captured_stderr.h"
#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using desktop::FilePlayer;
using desktop::Loudspeaker;
using testing::ElementsAre;

class OnTheClock : public testing::Test {
 protected:
  OnTheClock() { desktop::UseNullDevices(1); }

  // A tone of `ms` that needs no conversion.
  static void WriteTone(int ms) {
    WriteFile("tone.wav",
              WavBytes({.channels = 2, .rate = 48000}, Tone(300, 9000, 48000, 48 * ms, 2)));
  }

  // How long `goes()` stays true from now on, to 10 ms.
  template <typename Goes>
  static int MsWhile(const Goes& goes) {
    int ms = 0;
    for (; goes() && ms < 60'000; ms += 10) SleepMs(10);
    return ms;
  }

  const desktop::StepClock m_clock;
  const TemporaryDirectory m_directory;
  const CapturedStderr m_log;
};

TEST_F(OnTheClock, APlayerEndsWithItsLastBlock) {
  WriteTone(1000);
  FilePlayer player;
  ASSERT_EQ(player.Open("tone.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  const int ms = MsWhile([&] { return player.IsPlaying(); });
  EXPECT_GE(ms, 1000);
  EXPECT_LE(ms, 1020);
  EXPECT_EQ(player.PlayedMs(), 1000U);
  EXPECT_EQ(player.Underruns(), 0U);
}

TEST_F(OnTheClock, APlayerThatPlaysIsNotStartedAnew) {
  WriteTone(1000);
  FilePlayer player;
  ASSERT_EQ(player.Open("tone.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  SleepMs(600);
  ASSERT_TRUE(player.Play());
  EXPECT_GE(player.PlayedMs(), 590U);
  EXPECT_LE(MsWhile([&] { return player.IsPlaying(); }), 420);
  EXPECT_TRUE(player.Play());  // It has ended: from the start.
  SleepMs(100);
  EXPECT_LE(player.PlayedMs(), 110U);
}

// Stop wakes the thread, whose wait would never end: time stands still in a Stop.
TEST_F(OnTheClock, APlayerIsStoppedAtOnce) {
  WriteTone(10'000);
  for (const bool pauses : {false, true}) {
    FilePlayer player;
    ASSERT_EQ(player.Open("tone.wav"), desktop::FileFault::kNone);
    ASSERT_TRUE(player.Play());
    SleepMs(100);
    if (pauses) player.Pause();
    SleepMs(2000);
    const desktop::Time before = desktop::Now();
    alarm(60);  // Ends a Stop that hangs.
    player.Stop();
    alarm(0);
    EXPECT_EQ(desktop::Now(), before);
    EXPECT_FALSE(player.IsPlaying());
  }
}

class Statuses : public ISpeechMsgPlayerNotify {
 public:
  void OnAudioPlayStatus(uint32_t played, uint32_t, uint32_t) override { times.push_back(played); }
  void OnAudioPlayError() override { ADD_FAILURE(); }
  void OnFirstStartPlayData() override {}
  void OnStopPlayData(uint32_t, uint32_t) override {}
  void OnReachMaxPlayTime(uint32_t, uint32_t) override { ADD_FAILURE(); }
  std::vector<uint32_t> times;
};

TEST_F(OnTheClock, ASpeechMessageTellsHowItPlaysFiveTimesASecond) {
  WriteTone(2000);
  ISpeechMsgPlayer* const player = ISpeechMsgPlayer::CreateAudioPlayer("tone.wav");
  Statuses statuses;
  ASSERT_TRUE(player->Start(&statuses));
  SleepMs(3000);
  player->Destroy();
  ASSERT_GE(statuses.times.size(), 10U);
  ASSERT_LE(statuses.times.size(), 11U);
  for (size_t i = 1; i < statuses.times.size(); ++i) {
    EXPECT_NEAR(statuses.times[i] - statuses.times[i - 1], 200, 10) << i;
  }
}

TEST_F(OnTheClock, ASongEndsWithItsRecording) {
  WriteTone(5000);
  char none[] = "";
  char song[] = "tone.wav";
  char voice[] = "voice.wav";
  const Played played;
  IKaraokeRecorder* const recorder = IKaraokeRecorder::Create();
  ASSERT_TRUE(recorder->OpenInputFile(none, song));
  ASSERT_TRUE(recorder->OpenOutputFile(voice, none));
  ASSERT_TRUE(recorder->Start());
  SleepMs(500);
  recorder->Stop();
  const size_t sound = played.Sound().size();
  EXPECT_GT(sound, 40'000U);
  SleepMs(500);
  EXPECT_EQ(played.Sound().size(), sound);
  recorder->Destroy();
}

// Fills with silence, and is fed back as it is told.
class Silent : public desktop::PlaySource {
 public:
  explicit Silent(AudioSourceType feedback) : m_feedback(feedback) {
    Loudspeaker::Shared().Add(this);
  }
  ~Silent() override { Loudspeaker::Shared().Remove(this); }
  Silent(const Silent&) = delete;
  Silent& operator=(const Silent&) = delete;
  void FillBlock(short* samples, size_t frames) override {
    std::fill_n(samples, 2 * frames, short{0});
  }
  AudioSourceType FeedBack() const override { return m_feedback; }

 private:
  const AudioSourceType m_feedback;
};

// Notes what the latest block says of the microphone.
class Follower : public desktop::PlayListener {
 public:
  Follower() { Loudspeaker::Shared().Add(this); }
  ~Follower() override { Loudspeaker::Shared().Remove(this); }
  Follower(const Follower&) = delete;
  Follower& operator=(const Follower&) = delete;
  void OnPlayed(const desktop::PlayedBlock& block) override {
    feeds = block.feedback != nullptr;
    replaces = block.replacesMicrophone;
    ++blocks;
  }
  std::atomic<bool> feeds = false;
  std::atomic<bool> replaces = false;
  std::atomic<int> blocks = 0;
};

TEST_F(OnTheClock, OneSourceThatReplacesTheMicrophoneIsEnough) {
  const Follower follower;
  const Silent replacing(AudioSourceTypeOuterPCM);
  const Silent mixed(AudioSourceTypeMix);
  const Silent heard(AudioSourceTypeMic);
  SleepMs(100);
  EXPECT_TRUE(follower.feeds);
  EXPECT_TRUE(follower.replaces);
}

TEST_F(OnTheClock, TheLoudspeakerDoesNotRunForThoseWhoFollowIt) {
  const Follower follower;
  SleepMs(1000);
  EXPECT_EQ(follower.blocks, 0);
  {
    const Silent source(AudioSourceTypeMic);
    SleepMs(1000);
  }
  const int blocks = follower.blocks;
  EXPECT_NEAR(blocks, 100, 1);
  SleepMs(1000);
  EXPECT_EQ(follower.blocks, blocks);
}

class CountedBlocks : public desktop::CaptureListener {
 public:
  void OnCaptured(const desktop::CapturedBlock& /*block*/) override { ++blocks; }
  std::atomic<int> blocks = 0;
};

// A thread stops the microphone whose work the clock does not wait for, so that time goes on in the
// middle of the stop: what the device captures until it has ended is heard all the same.
TEST_F(OnTheClock, AMicrophoneIsHeardToItsLastBlock) {
  for (int i = 0; i < 30; ++i) {
    CountedBlocks counted;
    const std::atomic<bool> cleans = false;
    desktop::Microphone microphone({16000, 1}, cleans);
    microphone.Add(&counted);
    ASSERT_TRUE(microphone.Start());
    SleepMs(50);
    std::atomic<bool> stopped = false;
    std::thread stopper([&] {
      microphone.Stop();
      stopped = true;
    });
    while (!stopped) SleepMs(10);
    stopper.join();
    microphone.Remove(&counted);
    const std::string last = m_log.Lines().back();
    EXPECT_NE(last.find("stopped after " + std::to_string(counted.blocks) + " blocks"),
              std::string::npos)
        << last << ", heard " << counted.blocks;
  }
}

std::atomic<int> g_lines = 0;
void CountLine(const char* /*line*/) { ++g_lines; }

TEST_F(OnTheClock, AnEngineThatIsDestroyedLeavesNeitherItsFeatureNorItsLog) {
  IAudioEngine* const engine = CreateAudioEngine(nullptr, 0, nullptr, CountLine);
  ASSERT_TRUE(engine->Start(AudioEngineFeatureVOIP));
  OutputDebugInfo("heard");
  EXPECT_EQ(g_lines, 1);
  EXPECT_TRUE(desktop::CleansCapture());
  engine->Destroy();
  EXPECT_FALSE(desktop::CleansCapture());
  OutputDebugInfo("not heard");
  EXPECT_EQ(g_lines, 1);
}

}  // namespace
