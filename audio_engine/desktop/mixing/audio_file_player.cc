#include "engine_api/mixing/audio_file_player.h"

#include "desktop/live/file_player.h"
#include "desktop/platform/callback_scope.h"

namespace {

using desktop::RefusesInCallback;

class AudioFilePlayer : public IAudioFilePlayer {
 public:
  FilePlayerOpenStatus Open(char* file) override {
    if (RefusesInCallback(this, "IAudioFilePlayer::Open")) return PLAYER_OPEN_FILE_PATH_ERROR;
    return m_player.Open(file);
  }
  void Play() override {
    if (!RefusesInCallback(this, "IAudioFilePlayer::Play")) m_player.Play();
  }
  void Pause() override { m_player.Pause(); }
  void Stop() override {
    if (!RefusesInCallback(this, "IAudioFilePlayer::Stop")) m_player.Stop();
  }
  void SetFeedBackToMicMode(AudioSourceType mode) override { m_player.SetFeedBack(mode); }
  void Destroy() override {
    if (!RefusesInCallback(this, "IAudioFilePlayer::Destroy")) delete this;
  }

 private:
  desktop::FilePlayer m_player;
};

}  // namespace

IAudioFilePlayer* IAudioFilePlayer::Create() { return new AudioFilePlayer; }
