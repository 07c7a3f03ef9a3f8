#include "engine_api/mixing/audio_file_player.h"

#include "desktop/live/file_player.h"
#include "desktop/platform/callback_scope.h"

namespace {

using desktop::FileFault;
using desktop::RefusesInCallback;

FilePlayerOpenStatus StatusOf(FileFault fault) {
  switch (fault) {
    case FileFault::kNone:
      return PLAYER_OPEN_SUCCESS;
    case FileFault::kCannotOpen:
      return PLAYER_OPEN_FILE_PATH_ERROR;
    case FileFault::kUnknownKind:
      return PLAYER_OPEN_FILE_FORMAT_NOT_SUPPORT;
    case FileFault::kDamaged:
      return PLAYER_OPEN_FILE_DECODER_FAILED;
    case FileFault::kNoDecoder:
      break;
  }
  return PLAYER_CREATE_FILE_DECODER_FAILED;
}

class AudioFilePlayer : public IAudioFilePlayer {
 public:
  FilePlayerOpenStatus Open(char* file) override {
    if (RefusesInCallback(this, "IAudioFilePlayer::Open")) return PLAYER_OPEN_FILE_PATH_ERROR;
    return StatusOf(m_player.Open(file));
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
