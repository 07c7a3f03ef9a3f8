#include "fake_engine/aec/aec_frame_text.h"

std::string FrameText(const zuwebrtc::AudioFrame& frame) {
  const bool asNew = frame.id_ == -1 && frame.timestamp_ == 0 && frame.elapsed_time_ms_ == -1 &&
                     frame.ntp_time_ms_ == -1 && frame.speech_type_ == zuwebrtc::kUndefined &&
                     frame.vad_activity_ == zuwebrtc::kVadUnknown && frame.energy_ == 0xffffffff &&
                     frame.interleaved_;
  return std::to_string(frame.samples_per_channel_) + ", " + std::to_string(frame.sample_rate_hz_) +
         " Hz, " + std::to_string(frame.num_channels_) + " ch" + (asNew ? "" : ", used");
}
