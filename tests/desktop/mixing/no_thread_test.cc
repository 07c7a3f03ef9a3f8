// What starts a thread says so and stays stopped where the system gives none.

#include "support/no_thread.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <string>

#include "desktop/devices/audio_device.h"
#include "desktop/live/file_player.h"
#include "desktop/live/packets.h"
#include "engine_api/mixing/audio_channel.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/karaoke_file_mixer.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "support/captured_stderr.h"
#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using testing::ElementsAre;

class WithoutThreads : public testing::Test {
 protected:
  void SetUp() override {
    if (!kThreadsCanFail) GTEST_SKIP() << "the sanitizer ends a process that can start no thread";
    WriteFile("tone.wav",
              WavBytes({.channels = 2, .rate = 48000}, Tone(300, 9000, 48000, 4800, 2)));
  }

  // The lines that a start leaves in the log, without their times. It is to return false.
  static std::vector<std::string> Log(const std::function<bool()>& starts) {
    const CapturedStderr log;
    const int status = RunInChild([&] {
      desktop::UseNullDevices(1);
      _exit(starts() ? 1 : 0);
    });
    EXPECT_EQ(status, 0);
    std::vector<std::string> lines = log.Lines();
    for (std::string& line : lines) line.erase(0, line.find(' ') + 1);
    return lines;
  }

  // What the system says of a thread that it does not start.
  const std::string m_reason = strerror(EAGAIN);
  const TemporaryDirectory m_directory;
};

TEST_F(WithoutThreads, AFilePlayerDoesNotPlay) {
  EXPECT_THAT(Log([] {
                desktop::FilePlayer player;
                if (player.Open("tone.wav") != desktop::FileFault::kNone) return true;
                AllowNoThread();
                return player.Play() || player.IsPlaying();
              }),
              ElementsAre("player: " + m_reason));
}

TEST_F(WithoutThreads, ASpeechMessageDoesNotPlay) {
  EXPECT_THAT(Log([] {
                ISpeechMsgPlayer* const player = ISpeechMsgPlayer::CreateAudioPlayer("tone.wav");
                AllowNoThread();
                const bool starts = player->Start(nullptr);
                player->Destroy();
                return starts;
              }),
              ElementsAre("player: " + m_reason));
}

TEST_F(WithoutThreads, AChannelOpensNeitherItsMicrophoneNorAStream) {
  EXPECT_THAT(Log([] {
                IAudioChannel* const channel = IAudioChannel::Create();
                FedPackets fed(51, {});
                AllowNoThread();
                const bool opens = channel->OpenCapture();
                const bool plays = channel->StartPlay(&fed, 7, 48000, 2);
                channel->StopPlay(7);
                channel->Destroy();
                return opens || plays;
              }),
              ElementsAre("microphone: does not start: " + m_reason,
                          "player: stream 7 does not start: " + m_reason));
}

TEST_F(WithoutThreads, AnEngineNeitherOpensNorSaves) {
  EXPECT_THAT(
      Log([] {
        IAudioEngine* const engine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
        IAudioCapture* const capture = engine->CreateAudioCapture();
        char file[] = "a.wav";
        AllowNoThread();
        const bool opens = capture->Open(16000, 1, 16);
        const bool saves =
            engine->StartAudioSaver(file, AudioSaverOnlyRender, AudioSaverFileOverride);
        engine->Destroy();
        return opens || saves;
      }),
      ElementsAre("microphone: does not start: " + m_reason, "saver: does not start: " + m_reason));
}

TEST_F(WithoutThreads, AKaraokeRecorderDoesNotStart) {
  EXPECT_THAT(Log([] {
                IKaraokeRecorder* const recorder = IKaraokeRecorder::Create();
                char file[] = "a.wav";
                if (!recorder->OpenOutputFile(file, nullptr)) return true;
                AllowNoThread();
                const bool starts = recorder->Start();
                recorder->Destroy();
                return starts;
              }),
              ElementsAre("karaoke recorder: does not start: " + m_reason));
}

class Ends : public IKaraokeFileMixerNotify {
 public:
  void OnFileMixerState(uint32_t, uint32_t) override { ++count; }
  void OnFinishMixer() override { count += 100; }
  int count = 0;
};

TEST_F(WithoutThreads, AKaraokeMixerTellsItsEndAtOnce) {
  EXPECT_THAT(Log([] {
                IKaraokeFileMixer* const mixer = IKaraokeFileMixer::Create();
                Ends ends;
                mixer->SetKaraokeFileMixerNotify(&ends);
                char in[] = "tone.wav";
                char out[] = "a.wav";
                if (!mixer->Open(in, in)) return true;
                AllowNoThread();
                const bool starts = mixer->Start(out);
                mixer->Destroy();
                return starts || ends.count != 100;
              }),
              ElementsAre("karaoke mixer: cannot start: " + m_reason));
}

}  // namespace
