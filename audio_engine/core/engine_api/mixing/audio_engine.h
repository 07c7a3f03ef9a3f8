#pragma once

#include <cstdint>

#include "../common/visibility.h"
#include "audio_capture_notify.h"

// What an engine is started for. VOIP and HDVOIP clean what is captured: high-pass, noise
// suppression, gain control, and echo cancellation while something plays; at 16000 Hz and in mono
// inside, so that nothing above 8 kHz is left. The others leave it alone.
enum AudioEngineFeature_t {
  AudioEngineFeatureVOIP = 0,           // A call.
  AudioEngineFeatureCommon = 1,         // Whatever else.
  AudioEngineFeatureSpeechMsg = 2,      // Recorded messages.
  AudioEngineFeatureLiveBroadcast = 3,  // One who speaks to many.
  AudioEngineFeatureHDVOIP = 4,         // A call; cleaned as in VOIP.
  AudioEngineKaraokeOffLine = 5,        // Singing to a recording.
  TotalFeatureMode = 6                  // How many there are; none of them.
};

// What an audio saver records. Players may feed what they play back into the microphone path: the
// third mode takes that path as it was before, so that nobody is in the mix twice. What is played
// is always recorded at 48000 Hz stereo.
enum AudioSaverMode {
  AudioSaverOnlyCapture = 0,    // The microphone path with that feedback.
  AudioSaverOnlyRender = 1,     // What is played.
  AudioSaverBoth = 2,           // The microphone path before the feedback, and what is played.
  AusioSaverOnlyCaptureOri = 3  // The microphone path before the feedback.
};

// Whether a saver goes on after what a file holds, in the format of that file, or replaces it.
enum AudioSaverWfMode { AudioSaverFileAppend = 0, AudioSaverFileOverride = 1 };

// The microphone. Owned by its engine; belongs to one thread.
class ENGINE_API IAudioCapture {
 public:
  // Opens the device: 8000 to 48000 Hz, 1 or 2 channels, 16 bits. False, with one line in the log,
  // for anything else.
  virtual bool Open(uint32_t sampleRate, uint32_t channels, uint32_t bitsPerSample) = 0;

  // Hands over a block every 10 ms, on a thread of the engine; null for nobody. False before Open.
  virtual bool Start(IAudioCaptureNotify* notify) = 0;

  // No notify is called afterwards.
  virtual void Stop() = 0;
  virtual void Close() = 0;  // Stops and gives the device back.

  // Stops, closes and deletes the object.
  virtual void Destroy() = 0;

 protected:
  virtual ~IAudioCapture() = default;
};

// The engine of a process: captures, players and savers meet in it. Belongs to one thread.
class ENGINE_API IAudioEngine {
 public:
  // Sets the feature; false for one that does not exist.
  virtual bool Start(AudioEngineFeature_t feature) = 0;

  // A capture, the engine's own; never null. It is neither open nor started.
  virtual IAudioCapture* CreateAudioCapture() = 0;

  // Records into a file, AAC or WAVE by its ending, until StopAudioSaver. With a capture that is
  // open the file has its format; without, the saver opens the device itself: 44100 Hz, mono. Whole
  // frames reach the file at least every 500 ms. False, and no file, for another ending or without
  // the codec.
  virtual bool StartAudioSaver(char* file, AudioSaverMode mode, AudioSaverWfMode writing) = 0;
  virtual void StopAudioSaver() = 0;  // Finishes the file.

  // Ends everything of the engine and deletes it. A callback that it waits for may call
  // CreateAudioEngine, which makes the next engine then.
  virtual void Destroy() = 0;

 protected:
  virtual ~IAudioEngine() = default;
};

// The engine of this process, made by the first call; never null. The first three arguments are not
// used on a desktop. Every line of the engine's log also goes to `log`, from any thread; null for
// nobody. What `log` writes to the log does not reach it again. In `log`, operations that start,
// stop or destroy an object of the engine are refused with one line. Any thread.
ENGINE_API IAudioEngine* CreateAudioEngine(const char* path, int flags, const char* device,
                                           void (*log)(const char*));
