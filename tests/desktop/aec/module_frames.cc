#include "module_frames.h"

#include <gtest/gtest.h>

#include <algorithm>

using zuwebrtc::AudioFrame;

AudioFrame Frame(const short* samples, Format format) {
  AudioFrame frame;
  frame.sample_rate_hz_ = format.rate;
  frame.num_channels_ = format.channels;
  frame.samples_per_channel_ = format.rate / 100;
  for (int i = 0; i < format.rate / 100 * format.channels; ++i) {
    frame.data_[i] = samples[i / format.channels];
  }
  return frame;
}

Samples Process(AecModule& module, const Samples& far, Format farFormat, const Samples& near,
                Format nearFormat, Flags flags) {
  Samples out(near.size());
  const auto farBlock = static_cast<size_t>(farFormat.rate / 100);
  const auto nearBlock = static_cast<size_t>(nearFormat.rate / 100);
  for (size_t i = 0; (i + 1) * nearBlock <= near.size(); ++i) {
    AudioFrame render = Frame(&far[i * farBlock], farFormat);
    const AudioFrame before = render;
    EXPECT_EQ(module.ProcessRenderAudio(render, flags.render), 0);
    EXPECT_TRUE(std::equal(render.data_, render.data_ + 5292, before.data_));

    AudioFrame capture = Frame(&near[i * nearBlock], nearFormat);
    EXPECT_EQ(module.ProcessCaptureAudio(capture, flags.capture1, flags.capture2), 0);
    EXPECT_EQ(capture.sample_rate_hz_, nearFormat.rate);
    EXPECT_EQ(capture.num_channels_, nearFormat.channels);
    EXPECT_EQ(capture.samples_per_channel_, nearFormat.rate / 100);
    EXPECT_NE(capture.vad_activity_, zuwebrtc::kVadUnknown);
    for (size_t k = 0; k < nearBlock; ++k) {
      out[i * nearBlock + k] = capture.data_[k * static_cast<size_t>(nearFormat.channels)];
    }
  }
  return out;
}

Samples Late(const Samples& samples, int lag) { return {samples.begin() + lag, samples.end()}; }
