#include "engine_api/mixing/audio_file_player.h"

#include "desktop/mixing/file_player.h"

namespace {

class AudioFilePlayer : public IAudioFilePlayer {
 public:
  FilePlayerOpenStatus Open(char* file) override { return m_player.Open(file); }
  void Play() override { m_player.Play(); }
  void Pause() override { m_player.Pause(); }
  void Stop() override { m_player.Stop(); }
  void SetFeedBackToMicMode(AudioSourceType mode) override { m_player.SetFeedBack(mode); }
  void Destroy() override { delete this; }

 private:
  desktop::FilePlayer m_player;
};

}  // namespace

IAudioFilePlayer* IAudioFilePlayer::Create() { return new AudioFilePlayer; }
