// Owners that call the engine from the function that takes the lines of its log, and from the
// notify of a beat tracker, which is called on the thread of its owner.

#include <unistd.h>

#include "call_back_in.h"
#include "desktop/devices/audio_device.h"
#include "engine_api/effects/beat_track.h"
#include "engine_api/mixing/audio_channel.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/audio_file_player.h"
#include "engine_api/mixing/karaoke_file_mixer.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "engine_api/platform/log.h"
#include "support/child_process.h"
#include "support/drum_loop.h"
#include "support/temporary_directory.h"

namespace {

// Runs `body` in a process that has a minute for it.
void ExpectToEnd(const std::function<void(const CapturedStderr& log)>& body) {
  const TemporaryDirectory directory;
  EXPECT_EQ(RunInChild([&] {
              alarm(60);
              desktop::UseNullDevices(10);
              body(CapturedStderr());
              _exit(testing::Test::HasFailure() ? 1 : 0);
            }),
            0);
}

std::atomic<CallsBackIn*> g_calls = nullptr;
std::atomic<int> g_lines = 0;

void TakeLine(const char* /*line*/) {
  ++g_lines;
  if (g_calls != nullptr) g_calls.load()->In("log");
}

TEST(LogCallback, RefusesWhatStartsStopsOrDestroys) {
  ExpectToEnd([](const CapturedStderr& log) {
    char none[] = "";
    IAudioEngine* const engine = CreateAudioEngine(nullptr, 0, nullptr, TakeLine);
    IAudioCapture* const capture = engine->CreateAudioCapture();
    IAudioChannel* const channel = IAudioChannel::Create();
    IAudioFilePlayer* const file = IAudioFilePlayer::Create();
    IKaraokeRecorder* const recorder = IKaraokeRecorder::Create();
    IKaraokeFileMixer* const mixer = IKaraokeFileMixer::Create();
    ISpeechMsgPlayer* const speech = ISpeechMsgPlayer::CreateAudioPlayer("");
    CallsBackIn calls(log, "log");
    calls.calls = {
        Refused("IAudioEngine::Destroy", [&] { engine->Destroy(); }),
        Refused("IAudioEngine::StopAudioSaver", [&] { engine->StopAudioSaver(); }),
        Refused("IAudioCapture::Stop", [&] { capture->Stop(); }),
        Refused("IAudioCapture::Close", [&] { capture->Close(); }),
        Refused("IAudioCapture::Destroy", [&] { capture->Destroy(); }),
        Refused("IAudioChannel::StopPlay", [&] { channel->StopPlay(0); }),
        Refused("IAudioChannel::Destroy", [&] { channel->Destroy(); }),
        {"IAudioFilePlayer::Open", false, [&] { return file->Open(none) == PLAYER_OPEN_SUCCESS; }},
        Refused("IAudioFilePlayer::Play", [&] { file->Play(); }),
        Refused("IAudioFilePlayer::Stop", [&] { file->Stop(); }),
        Refused("IAudioFilePlayer::Destroy", [&] { file->Destroy(); }),
        {"IKaraokeRecorder::OpenInputFile", false,
         [&] { return recorder->OpenInputFile(none, none); }},
        {"IKaraokeRecorder::OpenOutputFile", false,
         [&] { return recorder->OpenOutputFile(none, none); }},
        {"IKaraokeRecorder::Start", false, [&] { return recorder->Start(); }},
        Refused("IKaraokeRecorder::Stop", [&] { recorder->Stop(); }),
        Refused("IKaraokeRecorder::Destroy", [&] { recorder->Destroy(); }),
        Refused("IKaraokeFileMixer::Stop", [&] { mixer->Stop(); }),
        Refused("IKaraokeFileMixer::Destroy", [&] { mixer->Destroy(); }),
        Refused("ISpeechMsgPlayer::Stop", [&] { speech->Stop(); }),
        Refused("ISpeechMsgPlayer::Destroy", [&] { speech->Destroy(); }),
        {"CreateAudioEngine", true,
         [&] { return CreateAudioEngine(nullptr, 0, nullptr, TakeLine) == engine; }},
    };
    g_calls = &calls;
    g_lines = 0;
    OutputDebugInfo("one line");
    EXPECT_TRUE(calls.done);
    EXPECT_EQ(g_lines, 1);  // Not those that it wrote itself.
    g_calls = nullptr;
    for (const auto& destroy : std::vector<std::function<void()>>{
             [&] { speech->Destroy(); }, [&] { mixer->Destroy(); }, [&] { recorder->Destroy(); },
             [&] { file->Destroy(); }, [&] { channel->Destroy(); }, [&] { engine->Destroy(); }}) {
      destroy();
    }
  });
}

class BeatNotify : public IBeatTrackNotify, public CallsBackIn {
 public:
  using CallsBackIn::CallsBackIn;
  void NotifyBeat(int, float) override {
    ++beats;
    In("NotifyBeat");
  }
  void NotifyStartFive() override { In("NotifyStartFive"); }
  int beats = 0;
};

class BeatCallbacks : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(, BeatCallbacks, testing::Values("NotifyBeat", "NotifyStartFive"));

TEST_P(BeatCallbacks, RefuseTheirTracker) {
  ExpectToEnd([](const CapturedStderr& log) {
    DrumLoop loop = RenderLoop(Groove::kHouse, 120, 12, 0, 16000);
    IBeatTrack* const tracker = CreateBeatTrack(16000, 1);
    BeatNotify notify(log, GetParam());
    notify.calls = {
        {"IBeatTrack::Detectbeat", false,
         [&] { return tracker->Detectbeat(loop.samples.data(), 160) != kBeatTrackBadBlock; }},
        Refused("IBeatTrack::Start", [&] { tracker->Start(0, &notify, 0); }),
        Refused("IBeatTrack::Stop", [&] { tracker->Stop(); }),
        Refused("IBeatTrack::Destroy", [&] { tracker->Destroy(); }),
    };
    tracker->Start(0, &notify, 0);
    const int samples = static_cast<int>(loop.samples.size());
    EXPECT_EQ(tracker->Detectbeat(loop.samples.data(), samples), 1);
    EXPECT_TRUE(notify.done);
    EXPECT_GT(notify.beats, 5);  // It goes on.
    tracker->Destroy();
  });
}

}  // namespace
