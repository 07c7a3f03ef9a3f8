#pragma once

namespace zuwebrtc {

// Copies channel c's sample k to interleaved[k * num_channels + c], channel by channel. channels:
// [num_channels] pointers to samples_per_channel samples each; interleaved: room for all of them,
// outside of the channels. Any thread.
template <typename T>
void Interleave(const T* const* channels, int samples_per_channel, int num_channels,
                T* interleaved) {
  for (int channel = 0; channel < num_channels; ++channel) {
    const T* source = channels[channel];
    T* destination = interleaved + channel;
    for (int k = 0; k < samples_per_channel; ++k) {
      *destination = source[k];
      destination += num_channels;
    }
  }
}

}  // namespace zuwebrtc
