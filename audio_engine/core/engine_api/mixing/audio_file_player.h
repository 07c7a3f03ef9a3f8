#pragma once

#include "../common/visibility.h"
#include "audio_source.h"

enum FilePlayerOpenStatus {
  PLAYER_OPEN_SUCCESS = 0,                   // It can be played.
  PLAYER_CREATE_FILE_DECODER_FAILED = -1,    // No decoder for it, no memory, or below 100 Hz.
  PLAYER_OPEN_FILE_DECODER_FAILED = -2,      // Known by its first bytes, but damaged.
  PLAYER_OPEN_FILE_FORMAT_NOT_SUPPORT = -3,  // No audio that the engine knows.
  PLAYER_OPEN_FILE_PATH_ERROR = -4           // It cannot be opened.
};

// Plays a file on the loudspeaker, mixed with the other players, and on request into the microphone
// path. Belongs to one thread.
class ENGINE_API IAudioFilePlayer {
 public:
  // A new player, owned by the caller until Destroy; never null.
  static IAudioFilePlayer* Create();

  // Opens WAVE, FLAC, Ogg, MP3 or AAC, by content; a file that was open is closed.
  virtual FilePlayerOpenStatus Open(char* file) = 0;

  // Plays once to the end, from its start or from where Pause left off. Nothing without a file.
  virtual void Play() = 0;
  virtual void Pause() = 0;  // Play goes on from here.
  virtual void Stop() = 0;   // Play starts over.

  // Where the player is heard: on the loudspeaker only (AudioSourceTypeMic, at first), in the
  // microphone path in place of the microphone (AudioSourceTypeOuterPCM) or mixed into it
  // (AudioSourceTypeMix), and on the loudspeaker in all three.
  virtual void SetFeedBackToMicMode(AudioSourceType mode) = 0;

  // Stops and deletes the object.
  virtual void Destroy() = 0;

 protected:
  virtual ~IAudioFilePlayer() = default;
};
