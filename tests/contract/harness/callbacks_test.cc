#include <gmock/gmock.h>

#include <cstring>
#include <memory>

#include "engine_api/effects/beat_track_notify.h"
#include "engine_api/mixing/karaoke_file_mixer_notify.h"
#include "fake_engine/fake_engine.h"
#include "harness/audio_frame_packer_test_notify.h"
#include "harness/audio_frame_player_test_notify.h"
#include "harness/capture_file_player.h"
#include "harness/speech_msg_player_notify.h"
#include "support/slot.h"
#include "support/transcript.h"

using testing::IsEmpty;

namespace {

char g_name[] = "pack.enc";

std::string Record(uint32_t length, const std::string& bytes) {
  std::string record(reinterpret_cast<const char*>(&length), sizeof length);
  record += bytes;
  return record;
}

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

void Capture(CaptureFilePlayer& player, const std::string& bytes) {
  player.OnCaptureAudioData(bytes.data(), static_cast<uint32_t>(bytes.size()), 9,
                            vadResultIsPassive, 1234);
}

void Pack(AudioFramePackerTestNotify& packer, const std::string& bytes) {
  packer.OnPackAudioFrame(reinterpret_cast<const uint8_t*>(bytes.data()),
                          static_cast<uint32_t>(bytes.size()), vadResultIsPassive, 77, 1);
}

}  // namespace

TEST(Callbacks, KeepTheirSlotsInOrder) {
  EXPECT_EQ(Slot(&IAudioCaptureNotify::OnCaptureAudioData), 2U);
  EXPECT_EQ(Slot(&IAudioCaptureNotify::OnCaptureVolumeVisual), 3U);
  EXPECT_EQ(Slot(&ISpeechMsgPlayerNotify::OnAudioPlayStatus), 2U);
  EXPECT_EQ(Slot(&ISpeechMsgPlayerNotify::OnAudioPlayError), 3U);
  EXPECT_EQ(Slot(&ISpeechMsgPlayerNotify::OnFirstStartPlayData), 4U);
  EXPECT_EQ(Slot(&ISpeechMsgPlayerNotify::OnStopPlayData), 5U);
  EXPECT_EQ(Slot(&ISpeechMsgPlayerNotify::OnReachMaxPlayTime), 6U);
  EXPECT_EQ(Slot(&IAudioFramePackerNotify::OnPackAudioFrame), 2U);
  EXPECT_EQ(Slot(&IAudioFramePackerNotify::OnAudioCaptureVolume), 3U);
  EXPECT_EQ(Slot(&IAudioFramePlayerNotify::OnPullAudioFrame), 2U);
  EXPECT_EQ(Slot(&IAudioFramePlayerNotify::OnAudioVolume), 3U);
  EXPECT_EQ(Slot(&IAudioFramePlayerNotify::OnAudioRenderPTS), 4U);
  EXPECT_EQ(Slot(&IAudioFramePlayerNotify::OnAudioAncData), 5U);
  EXPECT_EQ(Slot(&IKaraokeFileMixerNotify::OnFileMixerState), 2U);
  EXPECT_EQ(Slot(&IKaraokeFileMixerNotify::OnFinishMixer), 3U);
  EXPECT_EQ(Slot(&IBeatTrackNotify::NotifyBeat), 2U);
  EXPECT_EQ(Slot(&IBeatTrackNotify::NotifyStartFive), 3U);
}

// The file is one for the life of the process: all of its behaviour in one case.
TEST(CaptureFilePlayer, WritesEveryBlockOfEveryObjectIntoOneFile) {
  FakeEngine engine;
  engine.unwritable = {"capture.pcm"};
  CaptureFilePlayer first;
  Capture(first, "ab");
  Capture(first, "cd");
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(capture.pcm, wb) = null
      fopen(capture.pcm, wb) = null
  )"));

  engine.unwritable.clear();
  engine.calls.clear();
  Capture(first, "efg");
  CaptureFilePlayer second;
  Capture(second, "hi");
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(capture.pcm, wb)
      fwrite(capture.pcm, 3, 1)
      fflush(capture.pcm)
      fwrite(capture.pcm, 2, 1)
      fflush(capture.pcm)
  )"));
  EXPECT_EQ(engine.Bytes("capture.pcm"), "efghi");

  engine.calls.clear();
  EXPECT_TRUE(first.OnCaptureVolumeVisual(50));
  EXPECT_THAT(engine.calls, IsEmpty());
}

TEST(SpeechMsgPlayerNotify, DoesNothing) {
  FakeEngine engine;
  SpeechMsgPlayerNotify notify;
  notify.OnAudioPlayStatus(1, 2, 3);
  notify.OnAudioPlayError();
  notify.OnFirstStartPlayData();
  notify.OnStopPlayData(1, 2);
  notify.OnReachMaxPlayTime(1, 2);
  EXPECT_THAT(engine.calls, IsEmpty());
}

TEST(AudioFramePackerTestNotify, WritesLengthsAndFrames) {
  FakeEngine engine;
  {
    AudioFramePackerTestNotify packer(g_name);
    packer.OnAudioCaptureVolume(80);
    EXPECT_THAT(engine.calls, IsEmpty());  // No file before the first frame.
    Pack(packer, "abc");
    Pack(packer, "");
    Pack(packer, "d");
  }
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(pack.enc, wb)
      fwrite(pack.enc, 4, 1)
      fwrite(pack.enc, 3, 1)
      fwrite(pack.enc, 4, 1)
      fwrite(pack.enc, 0, 1)
      fwrite(pack.enc, 4, 1)
      fwrite(pack.enc, 1, 1)
      fclose(pack.enc)
  )"));
  EXPECT_EQ(engine.Bytes(g_name), Record(3, "abc") + Record(0, "") + Record(1, "d"));
}

TEST(AudioFramePackerTestNotify, ClosesNothingWithoutAFrame) {
  FakeEngine engine;
  { const AudioFramePackerTestNotify packer(g_name); }
  EXPECT_THAT(engine.calls, IsEmpty());
  EXPECT_FALSE(engine.HasFile(g_name));
}

TEST(AudioFramePackerTestNotify, WritesNothingWhileTheFileCannotBeOpened) {
  FakeEngine engine;
  engine.unwritable = {g_name};
  AudioFramePackerTestNotify packer(g_name);
  Pack(packer, "abc");
  engine.unwritable.clear();
  Pack(packer, "d");
  EXPECT_THAT(engine.CallsWith("fopen"), Transcript(R"(
      fopen(pack.enc, wb) = null
      fopen(pack.enc, wb)
  )"));
}

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
