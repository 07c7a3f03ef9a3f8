#pragma once

#include "../common/visibility.h"
#include "../effects/effect_parameters.h"
#include "karaoke_file_mixer_notify.h"

// Mixes a recorded voice, through equaliser, reverb and limiter, with its accompaniment into a
// file, on a thread of its own and faster than real time. The object belongs to one thread, which
// is not the one that calls the notify.
class ENGINE_API IKaraokeFileMixer {
 public:
  // A new mixer, owned by the caller until Destroy; never null.
  static IKaraokeFileMixer* Create();

  // Hears of the progress, about ten times a second, and of the end: exactly once for each Start,
  // also when Open or Start has failed. Null for nobody. Not during a run, which it outlives.
  virtual void SetKaraokeFileMixerNotify(IKaraokeFileMixerNotify* notify) = 0;

  // Opens both files, of any format and any two formats (WAVE, FLAC, Ogg, MP3, AAC; by content).
  // False, with one line in the log, when one cannot be read.
  virtual bool Open(char* voiceFile, char* accompanyFile) = 0;

  // Shifts the voice against the accompaniment, ms; positive: the voice comes later.
  virtual void SetVoiceOffset(int offset) = 0;

  // The stages of the voice; all are off at first. EqGains: see effect_parameters.h. As the offset
  // they take effect at the next Start.
  virtual void EnableEqualizer(bool enable) = 0;
  virtual void SetEqGains(float* gains) = 0;  // Eleven gains, dB.
  virtual void EnableReverbNew(bool enable) = 0;
  virtual void SetReverbFv3Param(NreverbFv3Parameter parameter) = 0;
  virtual void EnableLimiter(bool enable) = 0;
  virtual void SetLimiterParam(LimiterParam parameter) = 0;

  // Starts to write the mix: as long as the accompaniment, or as the shifted voice where that is
  // longer; in the accompaniment's format (8 to 48 kHz, at most stereo), as AAC or WAVE by the
  // ending of the name. False, with one line in the log, when nothing can be mixed; the notify
  // hears of the end all the same.
  virtual bool Start(char* outputFile) = 0;

  // Ends a run and waits for it; no notify is called afterwards. What was mixed stays in the file.
  virtual void Stop() = 0;

  // Stops and deletes the object.
  virtual void Destroy() = 0;

 protected:
  virtual ~IKaraokeFileMixer() = default;
};
