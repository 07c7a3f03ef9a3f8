#pragma once

#include <cstdint>

#include "../common/visibility.h"
#include "audio_frame_packer_notify.h"
#include "audio_frame_player_notify.h"

// One side of a call: packs what the microphone hears into coded frames, and plays coded frames
// that it pulls from its owner. Belongs to one thread. Its notifies may call EnablePackerVad; what
// else they call of their own channel is refused: false, or nothing happens, and one line in the
// log.
class ENGINE_API IAudioChannel {
 public:
  // A new channel, owned by the caller until Destroy; never null.
  static IAudioChannel* Create();

  // Whether frames without voice are left out, from 200 ms after the last voice on; off at first.
  virtual void EnablePackerVad(bool enable) = 0;

  // Gives coded frames to `notify`: codecType is the raw codec id; captureRate and processRate in
  // Hz (8000 to 48000), channels (1 or 2), and bytes of a captured sample (2). A frame is one
  // packet of the codec with the header that the encode drivers write, without a length ahead of
  // it, at most 1024 bytes; a longer one is dropped and counted. The volume is told ten times a
  // second, 0 to 100. False, and no calls, for anything else and for an id without a codec.
  virtual bool StartPacker(IAudioFramePackerNotify* notify, int codecType, int captureRate,
                           int processRate, int channels, int bytesPerSample) = 0;

  // Opens the microphone; frames come from now on.
  virtual bool OpenCapture() = 0;
  virtual void CloseCapture() = 0;

  // No packer notify is called afterwards.
  virtual void StopPacker() = 0;

  // Plays the stream `stream` on the loudspeaker, which brings it to its own format; sampleRate
  // (Hz) and channels say what the owner counts on and must be a format of a device. `notify` is
  // asked for a frame while less than 80 ms wait; after a false, and after a frame in which nothing
  // is to be heard (of no known codec, of no bytes), once per 10 ms. False for another format.
  virtual bool StartPlay(IAudioFramePlayerNotify* notify, uint32_t stream, uint32_t sampleRate,
                         uint32_t channels) = 0;

  // No player notify of the stream is called afterwards. One line in the log tells the delay of the
  // loop from the microphone to the loudspeaker, the codec's own left out, once both were in use.
  virtual void StopPlay(uint32_t stream) = 0;

  // Stops everything and deletes the object.
  virtual void Destroy() = 0;

 protected:
  virtual ~IAudioChannel() = default;
};
