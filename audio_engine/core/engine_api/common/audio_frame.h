#pragma once

#include <cstdint>

namespace zuwebrtc {

// What the decoder made a frame of.
enum SpeechType {
  kNormalSpeech = 0,  // Of a packet.
  kPLC = 1,           // Of no packet: a lost one is concealed.
  kCNG = 2,           // Comfort noise in a pause that the sender has left out.
  kPLCCNG = 3,        // Concealment that has faded into comfort noise.
  kUndefined = 4      // Not known, as in a frame that no decoder has made.
};

// Voice activity of a frame.
enum VADActivity {
  kVadActive = 0,             // Speech.
  kVadPassive = 1,            // Silence or the background.
  kVadUnknown = 2,            // No detector has looked at it.
  kVadActiveWithoutVoice = 3  // Another sound above the background.
};

// One frame of interleaved 16-bit audio with a fixed capacity, the unit that modules exchange. A
// new frame is in its reset state: all samples zero, no rate, no channels, speech type and voice
// activity unknown. Belongs to one thread at a time.
class AudioFrame {
 public:
  static constexpr int kMaxDataSizeSamples = 5292;  // 60 ms of 44.1 kHz stereo.

  virtual ~AudioFrame() = default;

  int id_ = -1;                   // Of its stream, -1 for none.
  uint32_t timestamp_ = 0;        // Samples, RTP style.
  int64_t elapsed_time_ms_ = -1;  // ms, -1 when unknown.
  int64_t ntp_time_ms_ = -1;      // ms, -1 when unknown.
  int16_t data_[kMaxDataSizeSamples] = {};
  // samples_per_channel_ times num_channels_ of data_ are filled, left before right.
  int samples_per_channel_ = 0;
  int sample_rate_hz_ = 0;  // Hz.
  int num_channels_ = 0;
  SpeechType speech_type_ = kUndefined;
  VADActivity vad_activity_ = kVadUnknown;
  uint32_t energy_ = 0xffffffff;  // 0xffffffff when unknown.
  bool interleaved_ = true;
};

}  // namespace zuwebrtc
