#include "harness/fill_frame.h"

#include <algorithm>

namespace harness {

void FillFrame(zuwebrtc::AudioFrame& frame, const short* samples, int count, int rate,
               int channels) {
  frame = zuwebrtc::AudioFrame();
  const int kept = std::clamp(count, 0, zuwebrtc::AudioFrame::kMaxDataSizeSamples);
  std::copy_n(samples, kept, frame.data_);
  frame.samples_per_channel_ = channels > 0 ? kept / channels : 0;
  frame.sample_rate_hz_ = rate;
  frame.num_channels_ = channels;
}

}  // namespace harness
