#pragma once

#include <cstdint>

namespace zuwebrtc {

// What the decoder made a frame of.
enum SpeechType { kNormalSpeech = 0, kPLC = 1, kCNG = 2, kPLCCNG = 3, kUndefined = 4 };

// Voice activity of a frame.
enum VADActivity { kVadActive = 0, kVadPassive = 1, kVadUnknown = 2, kVadActiveWithoutVoice = 3 };

// One frame of interleaved 16-bit audio with a fixed capacity, the unit that modules exchange. A
// new frame is in its reset state: all samples zero, no rate, no channels, speech type and voice
// activity unknown.
class AudioFrame {
 public:
  static constexpr int kMaxDataSizeSamples = 5292;  // 60 ms of 44.1 kHz stereo.

  virtual ~AudioFrame() = default;

  int id_ = -1;
  uint32_t timestamp_ = 0;        // Samples, RTP style.
  int64_t elapsed_time_ms_ = -1;  // ms, -1 when unknown.
  int64_t ntp_time_ms_ = -1;      // ms, -1 when unknown.
  int16_t data_[kMaxDataSizeSamples] = {};
  int samples_per_channel_ = 0;
  int sample_rate_hz_ = 0;
  int num_channels_ = 0;
  SpeechType speech_type_ = kUndefined;
  VADActivity vad_activity_ = kVadUnknown;
  uint32_t energy_ = 0xffffffff;
  bool interleaved_ = true;
};

}  // namespace zuwebrtc
