#include <gmock/gmock.h>

#include "contract/harness/frame_record.h"
#include "engine_api/effects/beat_track_notify.h"
#include "engine_api/mixing/audio_frame_player_notify.h"
#include "engine_api/mixing/karaoke_file_mixer_notify.h"
#include "fake_engine/fake_engine.h"
#include "harness/audio_frame_packer_test_notify.h"
#include "harness/capture_file_player.h"
#include "harness/speech_msg_player_notify.h"
#include "support/slot.h"
#include "support/transcript.h"

using testing::IsEmpty;

namespace {

char g_name[] = "pack.enc";

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
