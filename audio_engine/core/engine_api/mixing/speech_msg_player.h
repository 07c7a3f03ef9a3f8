#pragma once

#include <cstdint>

#include "../common/visibility.h"
#include "speech_msg_player_notify.h"

// Plays one recorded message. Belongs to one thread.
class ENGINE_API ISpeechMsgPlayer {
 public:
  // A player of a file (WAVE, FLAC, Ogg, MP3, AAC; by content), owned by the caller until Destroy;
  // never null. A file that cannot be read, "" for example, is a message of no length.
  static ISpeechMsgPlayer* CreateAudioPlayer(const char* file);

  // Prepares for playing; false when there is nothing to play.
  virtual bool Init() = 0;

  // The length of the message, ms; 0 when there is nothing to play.
  virtual uint32_t GetRecordFileTime() = 0;

  // Plays, and tells `notify` in the order start, status, stop; an error comes ahead of the stop.
  // Start and status are left out when nothing was heard. Null for nobody. False, and no calls,
  // when there is nothing to play.
  virtual bool Start(ISpeechMsgPlayerNotify* notify) = 0;

  // No notify is called afterwards.
  virtual void Stop() = 0;

  // Stops and deletes the object.
  virtual void Destroy() = 0;

 protected:
  virtual ~ISpeechMsgPlayer() = default;
};
