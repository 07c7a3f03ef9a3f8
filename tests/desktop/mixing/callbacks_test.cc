// Owners that call the engine from its callbacks: every callback of every notify, with every
// operation that ends or starts something. Each case is a process of its own, which an alarm ends
// where a call hangs.

#include <unistd.h>

#include <filesystem>
#include <thread>

#include "call_back_in.h"
#include "desktop/devices/audio_device.h"
#include "desktop/live/packets.h"
#include "desktop/live/wait.h"
#include "engine_api/mixing/audio_channel.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/audio_file_player.h"
#include "engine_api/mixing/karaoke_file_mixer.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

char g_wave[] = "tone.wav";
char g_out[] = "out.wav";

// Runs `body` in a process that has a minute for it.
void ExpectToEnd(const std::function<void(const CapturedStderr& log)>& body) {
  const TemporaryDirectory directory;
  WriteFile(g_wave, WavBytes({.rate = 16000}, Tone(300, 5000, 16000, 48000)));
  EXPECT_EQ(RunInChild([&] {
              alarm(60);
              desktop::UseNullDevices(10);
              body(CapturedStderr());
              _exit(testing::Test::HasFailure() ? 1 : 0);
            }),
            0);
}

class Callbacks : public testing::TestWithParam<const char*> {};

// --- The microphone.

class CaptureNotify : public IAudioCaptureNotify, public CallsBackIn {
 public:
  using CallsBackIn::CallsBackIn;
  void OnCaptureAudioData(const void*, uint32_t, uint8_t, VADResultKind, uint32_t) override {
    In("OnCaptureAudioData");
  }
  bool OnCaptureVolumeVisual(const uint32_t&) override {
    In("OnCaptureVolumeVisual");
    return true;
  }
};

using CaptureCallbacks = Callbacks;
INSTANTIATE_TEST_SUITE_P(, CaptureCallbacks,
                         testing::Values("OnCaptureAudioData", "OnCaptureVolumeVisual"));

TEST_P(CaptureCallbacks, RefuseWhatWouldWaitForThem) {
  ExpectToEnd([](const CapturedStderr& log) {
    CaptureNotify notify(log, GetParam());
    IAudioEngine* const engine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
    IAudioCapture* const capture = engine->CreateAudioCapture();
    notify.calls = {
        {"IAudioCapture::Open", false, [&] { return capture->Open(16000, 1, 16); }},
        {"IAudioCapture::Start", false, [&] { return capture->Start(&notify); }},
        Refused("IAudioCapture::Stop", [&] { capture->Stop(); }),
        Refused("IAudioCapture::Close", [&] { capture->Close(); }),
        Refused("IAudioCapture::Destroy", [&] { capture->Destroy(); }),
        {"IAudioEngine::StartAudioSaver", false,
         [&] { return engine->StartAudioSaver(g_out, AudioSaverBoth, AudioSaverFileOverride); }},
        Refused("IAudioEngine::StopAudioSaver", [&] { engine->StopAudioSaver(); }),
        Refused("IAudioEngine::Destroy", [&] { engine->Destroy(); }),
        {"IAudioEngine::Start", true, [&] { return engine->Start(AudioEngineFeatureCommon); }},
        {"CreateAudioEngine", true,
         [&] { return CreateAudioEngine(nullptr, 0, nullptr, nullptr) == engine; }},
        Works("IAudioEngine::CreateAudioCapture",
              [&] {
                IAudioCapture* const other = engine->CreateAudioCapture();
                EXPECT_TRUE(other->Open(8000, 1, 16));
                other->Stop();
                other->Close();
                other->Destroy();
              }),
        {"IAudioFilePlayer", true,
         [] {
           IAudioFilePlayer* const player = IAudioFilePlayer::Create();
           const bool opened = player->Open(g_wave) == PLAYER_OPEN_SUCCESS;
           player->Play();
           player->Stop();
           player->Destroy();
           return opened;
         }},
    };
    ASSERT_TRUE(capture->Open(16000, 1, 16));
    ASSERT_TRUE(engine->StartAudioSaver(g_out, AudioSaverOnlyCapture, AudioSaverFileOverride));
    ASSERT_TRUE(capture->Start(&notify));
    EXPECT_TRUE(WaitUntil([&] { return notify.done.load(); }));
    engine->Destroy();
    EXPECT_GT(std::filesystem::file_size(g_out), 44U);
  });
}

// Destroy waits for a callback that asks for the engine.
class EngineAsker : public IAudioCaptureNotify {
 public:
  void OnCaptureAudioData(const void*, uint32_t, uint8_t, VADResultKind, uint32_t) override {
    if (isIn.exchange(true)) return;
    while (!destroys) std::this_thread::yield();
    // The other thread is on its way to wait for this callback.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    engine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
  }
  bool OnCaptureVolumeVisual(const uint32_t&) override { return false; }

  std::atomic<bool> isIn = false;
  std::atomic<bool> destroys = false;
  std::atomic<IAudioEngine*> engine = nullptr;
};

TEST(EngineCallbacks, MakeTheNextEngineWhileOneIsDestroyed) {
  ExpectToEnd([](const CapturedStderr& /*log*/) {
    EngineAsker notify;
    IAudioEngine* const engine = CreateAudioEngine(nullptr, 0, nullptr, nullptr);
    IAudioCapture* const capture = engine->CreateAudioCapture();
    ASSERT_TRUE(capture->Open(16000, 1, 16));
    ASSERT_TRUE(capture->Start(&notify));
    ASSERT_TRUE(WaitUntil([&] { return notify.isIn.load(); }));
    notify.destroys = true;
    engine->Destroy();
    ASSERT_NE(notify.engine.load(), nullptr);
    EXPECT_EQ(CreateAudioEngine(nullptr, 0, nullptr, nullptr), notify.engine);
    EXPECT_TRUE(notify.engine.load()->Start(AudioEngineFeatureVOIP));
    notify.engine.load()->Destroy();
  });
}

// --- A channel.

std::vector<CallIn> ChannelCalls(IAudioChannel* channel, IAudioFramePackerNotify* packer,
                                 IAudioFramePlayerNotify* player) {
  return {
      Works("IAudioChannel::EnablePackerVad", [=] { channel->EnablePackerVad(false); }),
      {"IAudioChannel::StartPacker", false,
       [=] { return channel->StartPacker(packer, 50, 48000, 48000, 1, 2); }},
      {"IAudioChannel::OpenCapture", false, [=] { return channel->OpenCapture(); }},
      Refused("IAudioChannel::CloseCapture", [=] { channel->CloseCapture(); }),
      Refused("IAudioChannel::StopPacker", [=] { channel->StopPacker(); }),
      {"IAudioChannel::StartPlay", false, [=] { return channel->StartPlay(player, 1, 44100, 2); }},
      Refused("IAudioChannel::StopPlay", [=] { channel->StopPlay(1); }),
      Refused("IAudioChannel::Destroy", [=] { channel->Destroy(); }),
      Works("IAudioEngine::Destroy",
            [] { CreateAudioEngine(nullptr, 0, nullptr, nullptr)->Destroy(); }),
  };
}

class PackerNotify : public IAudioFramePackerNotify, public CallsBackIn {
 public:
  using CallsBackIn::CallsBackIn;
  void OnPackAudioFrame(const uint8_t*, uint32_t, VADResultKind, uint32_t, uint8_t) override {
    In("OnPackAudioFrame");
  }
  void OnAudioCaptureVolume(uint32_t) override { In("OnAudioCaptureVolume"); }
};

class PlayerNotify : public FedPackets, public CallsBackIn {
 public:
  PlayerNotify(const std::vector<KeptPackets::Packet>& kept, const CapturedStderr& log,
               const char* callback)
      : FedPackets(50, kept), CallsBackIn(log, callback) {}
  bool OnPullAudioFrame(uint32_t stream, AudioFrameData& frame, bool first,
                        FramePlayerFeedbackInfo& feedback) override {
    In("OnPullAudioFrame");
    return FedPackets::OnPullAudioFrame(stream, frame, first, feedback);
  }
  bool OnAudioVolume(uint32_t, uint32_t) override {
    In("OnAudioVolume");
    return true;
  }
  bool OnAudioRenderPTS(uint32_t, uint32_t) override {
    In("OnAudioRenderPTS");
    return true;
  }
};

using ChannelCallbacks = Callbacks;
INSTANTIATE_TEST_SUITE_P(, ChannelCallbacks,
                         testing::Values("OnPackAudioFrame", "OnAudioCaptureVolume",
                                         "OnPullAudioFrame", "OnAudioVolume", "OnAudioRenderPTS"));

TEST_P(ChannelCallbacks, RefuseAllButTheVadSwitch) {
  ExpectToEnd([](const CapturedStderr& log) {
    const KeptPackets kept = Pack(50, Tone(300, 5000, 16000, 16000), 16000);
    IAudioChannel* const channel = IAudioChannel::Create();
    PackerNotify packer(log, GetParam());
    PlayerNotify player(kept.packets, log, GetParam());
    packer.calls = player.calls = ChannelCalls(channel, &packer, &player);
    ASSERT_TRUE(channel->StartPacker(&packer, 50, 48000, 48000, 1, 2));
    ASSERT_TRUE(channel->OpenCapture());
    ASSERT_TRUE(channel->StartPlay(&player, 1, 44100, 2));
    EXPECT_TRUE(WaitUntil([&] { return packer.done || player.done; }));
    channel->Destroy();
  });
}

// --- A speech message.

class SpeechNotify : public ISpeechMsgPlayerNotify, public CallsBackIn {
 public:
  using CallsBackIn::CallsBackIn;
  void OnAudioPlayStatus(uint32_t, uint32_t, uint32_t) override { In("OnAudioPlayStatus"); }
  void OnAudioPlayError() override { In("OnAudioPlayError"); }
  void OnFirstStartPlayData() override { In("OnFirstStartPlayData"); }
  void OnStopPlayData(uint32_t, uint32_t) override { In("OnStopPlayData"); }
  void OnReachMaxPlayTime(uint32_t, uint32_t) override { In("OnReachMaxPlayTime"); }
};

using SpeechCallbacks = Callbacks;
INSTANTIATE_TEST_SUITE_P(, SpeechCallbacks,
                         testing::Values("OnAudioPlayStatus", "OnAudioPlayError",
                                         "OnFirstStartPlayData", "OnStopPlayData"));

TEST_P(SpeechCallbacks, RefuseWhatWouldWaitForThem) {
  ExpectToEnd([](const CapturedStderr& log) {
    ISpeechMsgPlayer* const player = ISpeechMsgPlayer::CreateAudioPlayer(g_wave);
    std::filesystem::resize_file(g_wave, 44 + 2 * 16000);  // An error after a second of three.
    SpeechNotify notify(log, GetParam());
    notify.calls = {
        {"ISpeechMsgPlayer::Start", false, [&] { return player->Start(&notify); }},
        Refused("ISpeechMsgPlayer::Stop", [&] { player->Stop(); }),
        Refused("ISpeechMsgPlayer::Destroy", [&] { player->Destroy(); }),
        {"ISpeechMsgPlayer::Init", true, [&] { return player->Init(); }},
        {"ISpeechMsgPlayer::GetRecordFileTime", true,
         [&] { return player->GetRecordFileTime() == 3000; }},
        Works("IAudioEngine::Destroy",
              [] { CreateAudioEngine(nullptr, 0, nullptr, nullptr)->Destroy(); }),
    };
    ASSERT_TRUE(player->Start(&notify));
    EXPECT_TRUE(WaitUntil([&] { return notify.done.load(); }));
    player->Destroy();
  });
}

// --- A file mixer.

class MixerNotify : public IKaraokeFileMixerNotify, public CallsBackIn {
 public:
  using CallsBackIn::CallsBackIn;
  void OnFileMixerState(uint32_t, uint32_t) override { In("OnFileMixerState"); }
  void OnFinishMixer() override { In("OnFinishMixer"); }
};

using MixerCallbacks = Callbacks;
INSTANTIATE_TEST_SUITE_P(, MixerCallbacks, testing::Values("OnFileMixerState", "OnFinishMixer"));

TEST_P(MixerCallbacks, RefuseWhatWouldWaitForThem) {
  ExpectToEnd([](const CapturedStderr& log) {
    IKaraokeFileMixer* const mixer = IKaraokeFileMixer::Create();
    MixerNotify notify(log, GetParam());
    float gains[11] = {};
    notify.calls = {
        {"IKaraokeFileMixer::Start", false, [&] { return mixer->Start(g_out); }},
        Refused("IKaraokeFileMixer::Stop", [&] { mixer->Stop(); }),
        Refused("IKaraokeFileMixer::Destroy", [&] { mixer->Destroy(); }),
        Refused("IKaraokeFileMixer::SetKaraokeFileMixerNotify",
                [&] { mixer->SetKaraokeFileMixerNotify(nullptr); }),
        {"IKaraokeFileMixer::Open", true, [&] { return mixer->Open(g_wave, g_wave); }},
        Works("IKaraokeFileMixer::SetVoiceOffset", [&] { mixer->SetVoiceOffset(10); }),
        Works("IKaraokeFileMixer::EnableEqualizer", [&] { mixer->EnableEqualizer(true); }),
        Works("IKaraokeFileMixer::SetEqGains", [&] { mixer->SetEqGains(gains); }),
        Works("IKaraokeFileMixer::EnableReverbNew", [&] { mixer->EnableReverbNew(true); }),
        Works("IKaraokeFileMixer::SetReverbFv3Param", [&] { mixer->SetReverbFv3Param({}); }),
        Works("IKaraokeFileMixer::EnableLimiter", [&] { mixer->EnableLimiter(true); }),
        Works("IKaraokeFileMixer::SetLimiterParam", [&] { mixer->SetLimiterParam({}); }),
    };
    mixer->SetKaraokeFileMixerNotify(&notify);
    ASSERT_TRUE(mixer->Open(g_wave, g_wave));
    ASSERT_TRUE(mixer->Start(g_out));
    EXPECT_TRUE(WaitUntil([&] { return notify.done.load(); }));
    mixer->Destroy();
  });
}

}  // namespace
