#include "engine_api/mixing/speech_msg_player.h"

#include <atomic>
#include <system_error>
#include <thread>

#include "desktop/live/file_player.h"
#include "desktop/platform/callback_scope.h"
#include "desktop/platform/log.h"
#include "desktop/platform/wake.h"

namespace {

using desktop::RefusesInCallback;
using std::chrono::milliseconds;

class SpeechMsgPlayer : public ISpeechMsgPlayer {
 public:
  explicit SpeechMsgPlayer(const char* file) { m_player.Open(file); }
  ~SpeechMsgPlayer() override { SpeechMsgPlayer::Stop(); }

  bool Init() override { return GetRecordFileTime() > 0; }
  uint32_t GetRecordFileTime() override { return m_player.LengthMs(); }

  bool Start(ISpeechMsgPlayerNotify* notify) override {
    if (RefusesInCallback(this, "ISpeechMsgPlayer::Start")) return false;
    Stop();
    if (!Init() || !m_player.Play()) return false;
    try {
      m_notify = notify;
      if (notify != nullptr) m_thread = desktop::StartThread([this] { Notify(); });
      return true;
    } catch (const std::system_error& error) {
      desktop::LogRefusal("speech message: %s", error.what());
      m_player.Stop();
      return false;
    }
  }

  void Stop() override {
    if (RefusesInCallback(this, "ISpeechMsgPlayer::Stop")) return;
    if (m_thread.joinable()) {
      m_stop = true;
      m_wake.Post();
      m_thread.join();
      m_stop = false;
    }
    m_player.Stop();
  }

  void Destroy() override {
    if (!RefusesInCallback(this, "ISpeechMsgPlayer::Destroy")) delete this;
  }

 private:
  static constexpr milliseconds kLookEvery{10};
  // The owner hears of the status at every twentieth look.
  static constexpr int kStatusEvery = 20;

  bool Goes() const { return m_player.IsPlaying() && !m_stop; }

  void Notify() {
    const desktop::CallbackScope scope(this);
    const uint32_t total = m_player.LengthMs();
    while (m_player.PlayedMs() == 0 && Goes()) m_wake.WaitFor(kLookEvery);
    if (m_player.PlayedMs() > 0) TellHowItPlays(total);
    if (m_player.Failed() && !m_stop) m_notify->OnAudioPlayError();
    m_notify->OnStopPlayData(Played(total), total);
  }

  void TellHowItPlays(uint32_t total) {
    m_notify->OnFirstStartPlayData();
    int looks = 0;
    do {
      if (looks++ % kStatusEvery == 0) {
        m_notify->OnAudioPlayStatus(Played(total), total, m_player.Volume());
      }
      m_wake.WaitFor(kLookEvery);
    } while (Goes());
  }

  // After a change of rate the last sample may end a little later.
  uint32_t Played(uint32_t total) const { return std::min(m_player.PlayedMs(), total); }

  desktop::FilePlayer m_player;
  ISpeechMsgPlayerNotify* m_notify = nullptr;
  desktop::Wake m_wake;
  std::atomic<bool> m_stop = false;
  std::thread m_thread;
};

}  // namespace

ISpeechMsgPlayer* ISpeechMsgPlayer::CreateAudioPlayer(const char* file) {
  return new SpeechMsgPlayer(file);
}
