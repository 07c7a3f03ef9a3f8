// What all that uses the devices asks of their threads.

#include <gmock/gmock.h>

#include <memory>

#include "desktop/live/file_player.h"
#include "desktop/live/microphone.h"
#include "desktop/live/packets.h"
#include "desktop/mixing/parts/audio_saver.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/mixing/audio_channel.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "engine_api/platform/clock.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/voice.h"
#include "support/wav_bytes.h"

namespace {

class IgnoredCapture : public IAudioCaptureNotify {
 public:
  void OnCaptureAudioData(const void*, uint32_t, uint8_t, VADResultKind, uint32_t) override {}
  bool OnCaptureVolumeVisual(const uint32_t&) override { return true; }
};

class IgnoredMessage : public ISpeechMsgPlayerNotify {
 public:
  void OnAudioPlayStatus(uint32_t, uint32_t, uint32_t) override {}
  void OnAudioPlayError() override {}
  void OnFirstStartPlayData() override {}
  void OnStopPlayData(uint32_t, uint32_t) override {}
  void OnReachMaxPlayTime(uint32_t, uint32_t) override {}
};

class IgnoredFrames : public IAudioFramePackerNotify {
 public:
  void OnPackAudioFrame(const uint8_t*, uint32_t, VADResultKind, uint32_t, uint8_t) override {}
  void OnAudioCaptureVolume(uint32_t) override {}
};

void IgnoreLine(const char* /*line*/) {}

TEST(DeviceThreads, AllocateNothingOnceAllRuns) {
  const TemporaryDirectory directory;
  const CapturedStderr log;
  WriteFile("a.wav", WavBytes({}, Tone(500, 900, 16000, 160000)));
  char song[] = "a.wav";
  char none[] = "";
  char voice[] = "voice.wav";
  char mix[] = "mix.wav";
  char saved[] = "saved.wav";
  IgnoredCapture ignoredCapture;
  IgnoredMessage ignoredMessage;
  IgnoredFrames ignoredFrames;
  FedPackets fed(50, Pack(50, Babble(16000, 10), 16000).packets);
  const desktop::StepClock clock;
  desktop::UseNullDevices(1);

  IAudioEngine* engine = CreateAudioEngine(nullptr, 0, nullptr, IgnoreLine);
  ASSERT_TRUE(engine->Start(AudioEngineFeatureVOIP));
  IAudioCapture* capture = engine->CreateAudioCapture();
  ASSERT_TRUE(capture->Open(16000, 1, 16));
  ASSERT_TRUE(capture->Start(&ignoredCapture));
  ASSERT_TRUE(engine->StartAudioSaver(saved, AudioSaverBoth, AudioSaverFileOverride));
  auto rendered = std::make_unique<desktop::RenderSaver>(
      desktop::FileSink::Create("rendered.wav", desktop::Loudspeaker::kFormat, false));
  desktop::FilePlayer player;
  player.SetFeedBack(AudioSourceTypeMix);
  ASSERT_EQ(player.Open(song), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  IAudioChannel* channel = IAudioChannel::Create();
  ASSERT_TRUE(channel->StartPacker(&ignoredFrames, 50, 48000, 48000, 1, 2));
  ASSERT_TRUE(channel->OpenCapture());
  ASSERT_TRUE(channel->StartPlay(&fed, 0, 44100, 2));
  IKaraokeRecorder* recorder = IKaraokeRecorder::Create();
  ASSERT_TRUE(recorder->OpenInputFile(none, song));
  ASSERT_TRUE(recorder->OpenOutputFile(voice, mix));
  ASSERT_TRUE(recorder->Start());
  ISpeechMsgPlayer* message = ISpeechMsgPlayer::CreateAudioPlayer(song);
  ASSERT_TRUE(message->Start(&ignoredMessage));

  SleepMs(1000);
  for (const char* thread : {"loudspeaker", "microphone"}) {
    WatchAllocationsOf(thread);
    SleepMs(2000);
    EXPECT_EQ(WatchedAllocations(), 0U) << thread;
  }
  WatchAllocationsOf(nullptr);

  message->Destroy();
  recorder->Destroy();
  channel->Destroy();
  player.Stop();
  rendered = nullptr;
  engine->Destroy();
}

}  // namespace
