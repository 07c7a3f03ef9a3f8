#pragma once

#include <cstddef>
#include <memory>

namespace zuwebrtc {

// De-interleaved samples of some channels, each optionally split into bands of equal length,
// zero-filled at first. Memory holds channel after channel, and within a channel band after band.
// The pointers are valid as long as the buffer. Belongs to one thread at a time.
template <typename T>
class ChannelBuffer {
 public:
  // num_frames: samples per channel, a multiple of num_bands.
  ChannelBuffer(int num_frames, int num_channels, int num_bands = 1)
      : data_(new T[Count(num_frames) * Count(num_channels)]()),
        channels_(new T*[Count(num_channels) * Count(num_bands)]),
        bands_(new T*[Count(num_channels) * Count(num_bands)]),
        num_frames_(num_frames),
        num_frames_per_band_(num_frames / num_bands),
        num_channels_(num_channels),
        num_bands_(num_bands) {
    for (int channel = 0; channel < num_channels; ++channel) {
      for (int band = 0; band < num_bands; ++band) {
        T* start = data_.get() + channel * num_frames + band * num_frames_per_band_;
        channels_[Count(band * num_channels + channel)] = start;
        bands_[Count(channel * num_bands + band)] = start;
      }
    }
  }

  std::unique_ptr<T[]> data_;  // num_channels_ * num_frames_ samples.
  // [band * num_channels_ + channel]; the first num_channels_ are whole channels.
  std::unique_ptr<T*[]> channels_;
  std::unique_ptr<T*[]> bands_;    // [channel * num_bands_ + band].
  const int num_frames_;           // Samples per channel.
  const int num_frames_per_band_;  // Samples per channel and band.
  const int num_channels_;
  const int num_bands_;

 private:
  static constexpr size_t Count(int value) { return static_cast<size_t>(value); }
};

}  // namespace zuwebrtc
