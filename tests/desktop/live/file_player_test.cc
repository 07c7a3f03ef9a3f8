#include "desktop/live/file_player.h"

#include <gmock/gmock.h>

#include <string>

#include "desktop/live/played.h"
#include "desktop/live/wait.h"
#include "engine_api/mixing/audio_file_player.h"
#include "file_player_fixture.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/signals.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using desktop::FilePlayer;
using testing::ElementsAre;

using FilePlayerTest = FilePlayerFixture;

TEST_F(FilePlayerTest, PlaysAllSamplesBitForBitAndEndsByItself) {
  const std::vector<short> noise = Noise(48000 * 2 + 77);
  Write("a.wav", noise);
  const Played played;
  FilePlayer player;
  ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone);
  EXPECT_EQ(player.LengthMs(), 2001U);
  EXPECT_FALSE(player.IsPlaying());
  ASSERT_TRUE(player.Play());
  EXPECT_TRUE(player.IsPlaying());
  ASSERT_TRUE(WaitUntil([&] { return !player.IsPlaying(); }));
  EXPECT_EQ(player.PlayedMs(), 2001U);
  EXPECT_EQ(played.Sound(), noise);
  EXPECT_EQ(player.Underruns(), 0U);
}

TEST_F(FilePlayerTest, PlaysAgainFromTheStart) {
  const std::vector<short> noise = Noise(4800);
  Write("a.wav", noise);
  FilePlayer player;
  ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone);
  for (int i = 0; i < 2; ++i) {
    const Played played;
    ASSERT_TRUE(player.Play());
    ASSERT_TRUE(WaitUntil([&] { return !player.IsPlaying(); }));
    EXPECT_EQ(played.Sound(), noise);
  }
}

TEST_F(FilePlayerTest, ChangesTheRateWithoutDistortion) {
  for (const int rate : {44100, 16000}) {
    Write("a.wav", Tone(997, 10000, rate, rate * 2), rate, 1);
    const Played played;
    FilePlayer player;
    ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone);
    ASSERT_TRUE(player.Play());
    ASSERT_TRUE(WaitUntil([&] { return !player.IsPlaying(); }));
    const std::vector<short> sound = played.Sound();
    EXPECT_NEAR(static_cast<double>(sound.size()), 2 * 96000, 700);
    EXPECT_GE(sound.size(), 2U * 96000);  // The last samples, too.
    const ToneFit fit = FitTone(sound, 997, 48000, 2);
    EXPECT_NEAR(fit.amplitude, 10000, 10);
    EXPECT_LT(fit.residualDb, -75);
  }
}

// At a low rate one block of the file lasts long.
TEST_F(FilePlayerTest, PlaysLowRatesToTheEnd) {
  desktop::UseNullDevices(20);
  for (const int rate : {100, 1000, 2000, 2047, 2048}) {
    Write("a.wav", Tone(rate / 8.0, 10000, rate, rate), rate, 1);
    const Played played;
    FilePlayer player;
    ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone) << rate;
    ASSERT_TRUE(player.Play());
    ASSERT_TRUE(WaitUntil([&] { return !player.IsPlaying(); })) << rate;
    EXPECT_GE(player.PlayedMs(), 1000U) << rate;
    std::vector<short> sound = played.Sound();
    EXPECT_NEAR(*std::max_element(sound.begin(), sound.end()), 10000, 700) << rate;
  }
}

TEST_F(FilePlayerTest, RefusesRatesOfWhichNothingCanBeHeard) {
  for (const int rate : {1, 99}) {
    Write("a.wav", std::vector<short>(100, 1), rate, 1);
    FilePlayer player;
    EXPECT_EQ(player.Open("a.wav"), desktop::FileFault::kNoDecoder);
    EXPECT_FALSE(player.Play());
  }
  EXPECT_THAT(
      m_log.Lines(),
      ElementsAre(
          testing::HasSubstr(" a.wav: cannot play the audio file: its rate cannot be played"),
          testing::HasSubstr(" a.wav: cannot play the audio file: its rate cannot be played")));
}

TEST_F(FilePlayerTest, CountsTheUnderrunsOfEachPlay) {
  Write("a.wav", Noise(960));
  FilePlayer player;
  ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  ASSERT_TRUE(WaitUntil([&] { return !player.IsPlaying(); }));
  player.Stop();
  short block[960];
  player.FillBlock(block, 480);  // There is nothing, and more to come.
  EXPECT_EQ(player.Underruns(), 1U);
  ASSERT_TRUE(player.Play());
  ASSERT_TRUE(WaitUntil([&] { return !player.IsPlaying(); }));
  EXPECT_EQ(player.Underruns(), 0U);
}

TEST_F(FilePlayerTest, GoesOnWhereItPaused) {
  const std::vector<short> noise = Noise(96000);
  Write("a.wav", noise);
  const Played played;
  FilePlayer player;
  ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  ASSERT_TRUE(WaitUntil([&] { return player.PlayedMs() > 200; }));
  player.Pause();
  SleepMs(50);
  EXPECT_LT(player.PlayedMs(), 1900U);
  ASSERT_TRUE(player.Play());
  ASSERT_TRUE(WaitUntil([&] { return !player.IsPlaying(); }));
  std::vector<short> sound = played.Sound();
  std::erase(sound, short{0});
  EXPECT_EQ(sound, noise);
}

TEST_F(FilePlayerTest, IsSilentAfterStop) {
  Write("a.wav", Noise(96000));
  const Played played;
  FilePlayer player;
  ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  ASSERT_TRUE(WaitUntil([&] { return player.PlayedMs() > 200; }));
  player.Stop();
  EXPECT_FALSE(player.IsPlaying());
  const size_t before = played.Samples().size();
  ASSERT_TRUE(WaitUntil([&] { return played.Samples().size() > before + 9600; }));
  const std::vector<short> samples = played.Samples();
  EXPECT_THAT(
      std::vector<short>(samples.begin() + static_cast<ptrdiff_t>(before + 960), samples.end()),
      testing::Each(0));
}

TEST_F(FilePlayerTest, IsFinishedAsBackgroundWork) {
  m_clock.reset();  // Others wait for it by the machine's clock.
  Write("a.wav", Noise(48000));
  FilePlayer player;
  ASSERT_EQ(player.Open("a.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  EXPECT_FALSE(desktop::FinishBackgroundWork(std::chrono::milliseconds(1)));
  EXPECT_TRUE(desktop::FinishBackgroundWork(std::chrono::seconds(20)));
  EXPECT_FALSE(player.IsPlaying());

  ASSERT_TRUE(player.Play());
  player.Pause();  // Would never end.
  EXPECT_TRUE(desktop::FinishBackgroundWork(std::chrono::seconds(20)));
}

TEST_F(FilePlayerTest, AnswersWhyItCannotPlayAndPlaysNothing) {
  WriteFile("text.wav", "no sound at all");
  WriteFile("cut.wav", "RIFF\1\1\1");
  WriteFile("unknown.wav", WavBytes({.tag = 0x161}, {1, 2, 3}));
  struct Case {
    const char* name;
    FilePlayerOpenStatus status;
  };
  for (const Case& one : {Case{"missing.wav", PLAYER_OPEN_FILE_PATH_ERROR},
                          {"text.wav", PLAYER_OPEN_FILE_FORMAT_NOT_SUPPORT},
                          {"cut.wav", PLAYER_OPEN_FILE_DECODER_FAILED},
                          {"unknown.wav", PLAYER_CREATE_FILE_DECODER_FAILED}}) {
    IAudioFilePlayer* player = IAudioFilePlayer::Create();
    std::string name = one.name;
    EXPECT_EQ(player->Open(name.data()), one.status) << name;
    const uint64_t blocks = desktop::Loudspeaker::Shared().Device().Blocks();
    player->Play();
    player->Pause();
    player->SetFeedBackToMicMode(AudioSourceTypeMix);
    player->Stop();
    EXPECT_EQ(desktop::Loudspeaker::Shared().Device().Blocks(), blocks);
    player->Destroy();
  }
}

TEST_F(FilePlayerTest, RefusesARateThatCannotBePlayedBeforeItTakesRoomForIt) {
  FilePlayer player;
  for (const int rate : {1, 2, 7, 40}) {
    Write("slow.wav", Noise(5000), rate);
    LargestAllocation();
    EXPECT_EQ(player.Open("slow.wav"), desktop::FileFault::kNoDecoder) << rate;
    EXPECT_LT(LargestAllocation(), size_t{4} << 20) << rate;
    EXPECT_FALSE(player.IsOpen()) << rate;
  }
  EXPECT_THAT(m_log.Lines(),
              testing::Each(testing::EndsWith(
                  " slow.wav: cannot play the audio file: its rate cannot be played")));
}

TEST_F(FilePlayerTest, PlaysSeveralAtOnce) {
  Write("a.wav", std::vector<short>(9600, 1000));
  Write("b.wav", std::vector<short>(96000, 500));
  const Played played;
  std::string a = "a.wav";
  std::string b = "b.wav";
  IAudioFilePlayer* lasting = IAudioFilePlayer::Create();
  IAudioFilePlayer* brief = IAudioFilePlayer::Create();
  ASSERT_EQ(lasting->Open(b.data()), PLAYER_OPEN_SUCCESS);
  ASSERT_EQ(brief->Open(a.data()), PLAYER_OPEN_SUCCESS);
  lasting->Play();
  EXPECT_TRUE(WaitUntil([&] { return played.Last() == 500; }));
  brief->Play();
  EXPECT_TRUE(WaitUntil([&] { return played.Last() == 1500; }));
  EXPECT_TRUE(WaitUntil([&] { return played.Last() == 500; }));
  EXPECT_TRUE(WaitUntil([&] { return played.Last() == 0; }));
  brief->Destroy();
  lasting->Destroy();
  EXPECT_EQ(played.Sound().size(), 96000U);
}

}  // namespace
