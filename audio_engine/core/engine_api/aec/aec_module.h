#pragma once

#include "../common/audio_frame.h"
#include "../common/visibility.h"
#include "../enhancement/voice_detection.h"

// Which stage's rate and channel count an echo-cancellation module is asked for or told.
enum PlatFormFsChSel {
  APMFSCHSEL = 0  // The one in which the signals are processed; there is no other.
};

// The capture chain of a call: echo cancellation, and on request noise suppression and gain
// control. Per 10 ms first the far end, then the near end. Frames may have any rate from 8 to
// 48 kHz with 1 or 2 channels, render and capture each its own; a frame comes back in its own
// format. Render and capture calls belong to one thread; the slot order is fixed.
class ENGINE_API AecModule {
 public:
  virtual ~AecModule() = default;

  // Cleans a near-end frame in place and sets its vad_activity_. The flags say whether the frame
  // is played locally and whether it is sent; a module without a device does the same for all
  // values. Returns 0, or -1 for a frame that is no 10 ms of such audio, which stays as it is.
  virtual int ProcessCaptureAudio(zuwebrtc::AudioFrame& frame, bool played, bool sent) = 0;

  // Takes a far-end frame that goes to the loudspeaker, and leaves it as it is. The flag says
  // whether the frame is played by this process; same values as above, same result.
  virtual int ProcessRenderAudio(zuwebrtc::AudioFrame& frame, bool played) = 0;

  // How readily a frame is called active; unknown gives false.
  virtual bool SetVadMode(VoiceDetectionMode mode) = 0;

  // The processing rate (Hz) and channel count. Settable are 8000 and 16000 Hz and 1 channel,
  // other values give false and change nothing. A change starts the chain afresh.
  virtual bool SetFsAndCh(unsigned int, unsigned int, PlatFormFsChSel) { return true; }
  virtual bool GetFsAndCh(unsigned int& rate, unsigned int& channels, PlatFormFsChSel select) = 0;

  // True when this module cancels by itself, false when a device does.
  virtual bool IsSoftAecEnabled() = 0;

  // Gain control and noise suppression of what is captured; both are off at first. False when the
  // stage cannot be switched.
  virtual bool EnableAGC(bool) { return true; }
  virtual bool EnableDenoise(bool) { return true; }

  // Karaoke: capture frames pass without any processing but voice detection. The delay is what
  // capture frames are late by then, in ms.
  virtual bool IsKalaokEnabled() = 0;
  virtual bool EnableKalaok(bool on) = 0;
  virtual int GetKalaokDelay() = 0;

  // Another loudspeaker is in use: the echo path is learnt anew.
  virtual void NotifySpeekerRouting() = 0;

  // Starts the chain afresh, for frames of that rate (Hz).
  virtual bool ResetPreProc(unsigned int rate) = 0;

  // On asks for stronger noise suppression, where it is enabled.
  virtual bool SetNewNsOn(bool on) = 0;

  // Records what the canceller gets and gives into "<tag>_far.wav", "<tag>_near.wav" and
  // "<tag>_out.wav" until switched off or set to another rate.
  virtual bool EnableLogSoftAecData(bool on, const char* tag) = 0;

 protected:
  unsigned int m_apmFs = 16000;  // Processing rate, Hz.
  unsigned int m_apmCh = 1;      // Channels processed.
};
