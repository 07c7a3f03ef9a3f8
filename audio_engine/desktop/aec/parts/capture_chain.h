#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "desktop/aec/parts/aec_recorder.h"
#include "desktop/aec/parts/echo_canceller.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/enhancement/parts/level_control.h"
#include "desktop/enhancement/parts/voice_detector.h"
#include "engine_api/common/audio_frame.h"

namespace desktop {

// Echo cancellation, noise suppression, gain control and voice detection of a capture path, mono at
// 8 or 16 kHz inside. Frames are 10 ms of 1 or 2 channels at 8 to 48 kHz, render and capture each
// of its own format; another format than before is a moment's allocation.
class CaptureChain {
 public:
  CaptureChain();

  // Starts afresh at 8000 or 16000 Hz.
  void SetRate(int rate);
  bool SetVadMode(VoiceDetectionMode mode);
  void EnableGainControl(bool on);
  void EnableDenoise(bool on);
  void StrongDenoise(bool on);
  void Bypass(bool on) { m_bypassed = on; }
  bool IsBypassed() const { return m_bypassed; }
  void ForgetEchoPath() { m_canceller->ForgetEchoPath(); }

  // Records into files whose names start with `tag`, null for no more. True while it records.
  bool Record(const char* tag);

  // False for a frame that is not as above, and where there is no memory for its format: it stays
  // as it is.
  bool ProcessRender(const zuwebrtc::AudioFrame& frame);
  bool ProcessCapture(zuwebrtc::AudioFrame& frame);

 private:
  // Conversion between the frames of one path and the inside.
  struct Path {
    int rate = 0;
    int channels = 0;
    std::unique_ptr<Resampler> in;
    std::unique_ptr<Resampler> out;
    std::vector<short> samples;
  };

  bool Follow(Path& path, const zuwebrtc::AudioFrame& frame) const;
  bool Prepare(Path& path, const zuwebrtc::AudioFrame& frame, const char* end) const;
  void ApplyDenoise();

  int m_rate = 16000;
  std::unique_ptr<EchoCanceller> m_canceller;
  std::optional<VoiceDetector> m_voice;
  VoiceDetectionMode m_vadMode = voiceDetectionUnknown;

  // Empty while gain control is off.
  std::optional<LevelControl> m_level;
  std::unique_ptr<AecRecorder> m_recorder;
  bool m_denoises = false;
  bool m_strongDenoise = false;
  bool m_bypassed = false;
  Path m_render;
  Path m_capture;
  std::vector<float> m_block;
};

}  // namespace desktop
