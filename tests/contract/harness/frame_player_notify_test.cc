#include <gmock/gmock.h>

#include <cstring>
#include <memory>

#include "contract/harness/frame_record.h"
#include "fake_engine/fake_engine.h"
#include "harness/audio_frame_player_test_notify.h"
#include "support/transcript.h"

using testing::IsEmpty;

namespace {

char g_name[] = "pack.enc";

// A player of these records, as the channel test makes one.
std::unique_ptr<AudioFramePlayerTestNotify> Player(FakeEngine& engine, const std::string& records,
                                                   int codecType = 2, bool vadOn = false) {
  engine.PutFile(g_name, records);
  return std::make_unique<AudioFramePlayerTestNotify>(fopen(g_name, "rb"), g_name, codecType,
                                                      vadOn);
}

bool Pull(AudioFramePlayerTestNotify& player, AudioFrameData& frame) {
  FramePlayerFeedbackInfo feedback = {};
  return player.OnPullAudioFrame(0, frame, false, feedback);
}

std::string Stored(const AudioFrameData& frame, size_t bytes) {
  return {reinterpret_cast<const char*>(frame.frameData), bytes};
}

}  // namespace

TEST(AudioFramePlayerTestNotify, FillsOneFrameFromEachRecord) {
  FakeEngine engine;
  const auto player = Player(engine, Record(3, "abc") + Record(1, "d"), 0x1FF);
  AudioFrameData frame = {};
  frame.timestamp = 11;
  frame.ssrc = 12;
  frame.frameIndex = 100;
  frame.keyFrame = 13;
  frame.discard = 14;

  ASSERT_TRUE(Pull(*player, frame));
  EXPECT_EQ(Stored(frame, 3), "abc");
  EXPECT_EQ(frame.frameLength, 3);
  EXPECT_EQ(frame.frameIndex, 101U);
  EXPECT_EQ(frame.codecType, 0xFF);  // The low byte.
  EXPECT_EQ(player->m_timeMs, 20);

  frame.frameIndex = 500;  // The engine's own, which goes on from where the engine has it.
  ASSERT_TRUE(Pull(*player, frame));
  EXPECT_EQ(Stored(frame, 3), "dbc");
  EXPECT_EQ(frame.frameLength, 1);
  EXPECT_EQ(frame.frameIndex, 501U);
  EXPECT_EQ(frame.timestamp, 11U);
  EXPECT_EQ(frame.ssrc, 12U);
  EXPECT_EQ(frame.keyFrame, 13);
  EXPECT_EQ(frame.discard, 14);

  for (int pull = 0; pull < 3; ++pull) EXPECT_FALSE(Pull(*player, frame));
  EXPECT_EQ(player->m_timeMs, 40);
  EXPECT_EQ(frame.frameIndex, 501U);
}

TEST(AudioFramePlayerTestNotify, LeavesTheFeedbackAlone) {
  FakeEngine engine;
  const auto player = Player(engine, Record(1, "a"));
  AudioFrameData frame = {};
  FramePlayerFeedbackInfo feedback = {true, false, true, false, 1.5, 2.5, 3.5};
  ASSERT_TRUE(player->OnPullAudioFrame(7, frame, true, feedback));
  EXPECT_TRUE(feedback.acceleratePlay && !feedback.fasterPlayOn && feedback.stretchPlay &&
              !feedback.isFakeAudioFrame);
  EXPECT_EQ(feedback.accelerateMS + feedback.stretchMS + feedback.playDelayMS, 7.5);

  const auto another = Player(engine, Record(1, "a"));
  feedback = {false, true, false, true, 1.5, 2.5, 3.5};
  ASSERT_TRUE(another->OnPullAudioFrame(7, frame, true, feedback));
  EXPECT_TRUE(!feedback.acceleratePlay && feedback.fasterPlayOn && !feedback.stretchPlay &&
              feedback.isFakeAudioFrame);
}

// Neither in a silence, nor without a file, nor at its end.
TEST(AudioFramePlayerTestNotify, LeavesFrameAndFeedbackAloneWhenItHasNoFrame) {
  FakeEngine engine;
  const auto silent = Player(engine, Record(1, "a"), 2, true);
  const auto ended = Player(engine, "");
  AudioFramePlayerTestNotify without(nullptr, g_name, 2, false);
  for (IAudioFramePlayerNotify* const player :
       std::initializer_list<IAudioFramePlayerNotify*>{silent.get(), ended.get(), &without}) {
    AudioFrameData frame;
    memset(&frame, 0x5A, sizeof frame);
    const std::string before(reinterpret_cast<const char*>(&frame), sizeof frame);
    FramePlayerFeedbackInfo feedback = {true, true, true, true, 1.5, 2.5, 3.5};
    EXPECT_FALSE(player->OnPullAudioFrame(7, frame, true, feedback));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&frame), sizeof frame), before);
    EXPECT_TRUE(feedback.acceleratePlay && feedback.fasterPlayOn && feedback.stretchPlay &&
                feedback.isFakeAudioFrame);
    EXPECT_EQ(feedback.accelerateMS + feedback.stretchMS + feedback.playDelayMS, 7.5);
  }
  EXPECT_EQ(ftell(silent->fid), 0) << "nothing was read either";
}

TEST(AudioFramePlayerTestNotify, IsSilentAtTheStartAndAfterAWhile) {
  FakeEngine engine;
  std::string records;
  for (int i = 0; i < 400; ++i) records += Record(1, "a");
  const auto player = Player(engine, records, 2, true);
  AudioFrameData frame = {};
  const auto runLength = [&](bool answer) {
    for (int pulls = 0;; ++pulls) {
      const int before = player->m_timeMs;
      if (Pull(*player, frame) != answer) {
        player->m_timeMs = before;  // That pull belongs to the next run.
        if (!answer) fseek(player->fid, -5, SEEK_CUR);
        return pulls;
      }
    }
  };
  EXPECT_EQ(runLength(false), 164);
  EXPECT_EQ(player->m_timeMs, 1640);
  EXPECT_EQ(runLength(true), 147);
  EXPECT_EQ(player->m_timeMs, 4580);
  EXPECT_EQ(runLength(false), 140);
  EXPECT_EQ(player->m_timeMs, 5980);
  EXPECT_EQ(runLength(true), 400 - 147);
}

// The clock of a run moves past the bounds in larger steps.
TEST(AudioFramePlayerTestNotify, IsSilentToTheMillisecond) {
  FakeEngine engine;
  const auto player = Player(engine, Record(1, "a") + Record(1, "b") + Record(1, "c"), 2, true);
  AudioFrameData frame = {};
  for (const int timeMs : {0, 1639, 1640, 4579, 4580, 5979, 5980}) {
    player->m_timeMs = timeMs;
    const bool frameComes = timeMs == 1640 || timeMs == 4579 || timeMs == 5980;
    EXPECT_EQ(Pull(*player, frame), frameComes) << timeMs;
  }
}

TEST(AudioFramePlayerTestNotify, JudgesSilenceBeforeItsMissingFile) {
  FakeEngine engine;
  AudioFramePlayerTestNotify player(nullptr, g_name, 2, true);
  AudioFrameData frame = {};
  for (int pull = 0; pull < 164; ++pull) EXPECT_FALSE(Pull(player, frame));
  EXPECT_EQ(player.m_timeMs, 1640);
  EXPECT_FALSE(Pull(player, frame));
  EXPECT_EQ(player.m_timeMs, 1640);  // Not silent any more, and no file.
}

TEST(AudioFramePlayerTestNotify, SkipsARecordOfNothingWithoutMovingOn) {
  FakeEngine engine;
  const auto player = Player(engine, Record(1, "a") + Record(0, "") + Record(1, "b"));
  AudioFrameData frame = {};
  ASSERT_TRUE(Pull(*player, frame));
  EXPECT_FALSE(Pull(*player, frame));
  EXPECT_EQ(player->m_timeMs, 20);
  EXPECT_EQ(frame.frameIndex, 1U);
  EXPECT_EQ(frame.frameLength, 1);
  ASSERT_TRUE(Pull(*player, frame));
  EXPECT_EQ(Stored(frame, 1), "b");
}

TEST(AudioFramePlayerTestNotify, KeepsWhatFitsOfALongRecord) {
  FakeEngine engine;
  std::string bytes(1024, 'a');
  bytes += "tail!!";
  const auto player =
      Player(engine, Record(1030, bytes) + Record(70000, std::string(70000, 'c')) + Record(1, "b"));
  AudioFrameData frame = {};
  frame.timestamp = 0x55555555;

  ASSERT_TRUE(Pull(*player, frame));
  EXPECT_EQ(frame.frameLength, 1030);
  EXPECT_EQ(Stored(frame, 1024), std::string(1024, 'a'));
  EXPECT_EQ(frame.timestamp, 0x55555555U);

  ASSERT_TRUE(Pull(*player, frame));
  EXPECT_EQ(frame.frameLength, 70000 - 65536);  // 16 bits.
  ASSERT_TRUE(Pull(*player, frame));
  EXPECT_EQ(Stored(frame, 1), "b");  // In step.
}

TEST(AudioFramePlayerTestNotify, EndsAtARecordThatIsCutShort) {
  for (const uint32_t length : {4U, 2000U, 0xFFFFFFFFU}) {
    FakeEngine engine;
    const auto player = Player(engine, Record(1, "a") + Record(length, "bcd"));
    AudioFrameData frame = {};
    ASSERT_TRUE(Pull(*player, frame));
    for (int pull = 0; pull < 3; ++pull) EXPECT_FALSE(Pull(*player, frame)) << length;
    EXPECT_EQ(player->m_timeMs, 20);
    EXPECT_EQ(frame.frameIndex, 1U);
  }
}

TEST(AudioFramePlayerTestNotify, FindsNothingInAnEmptyFile) {
  FakeEngine engine;
  const auto player = Player(engine, "");
  AudioFrameData frame = {};
  for (int pull = 0; pull < 3; ++pull) EXPECT_FALSE(Pull(*player, frame));
}

TEST(AudioFramePlayerTestNotify, AnswersTheRestAndClosesItsFile) {
  FakeEngine engine;
  auto player = Player(engine, "");
  engine.calls.clear();
  EXPECT_TRUE(player->OnAudioVolume(1, 2));
  EXPECT_TRUE(player->OnAudioRenderPTS(1, 2));
  EXPECT_EQ(player->OnAudioAncData(nullptr, nullptr, 3), 0);
  EXPECT_THAT(engine.calls, IsEmpty());
  player.reset();
  EXPECT_THAT(engine.calls, Transcript("fclose(pack.enc)"));

  { const AudioFramePlayerTestNotify without(nullptr, g_name, 1, false); }
  EXPECT_THAT(engine.calls, Transcript("fclose(pack.enc)"));
}
