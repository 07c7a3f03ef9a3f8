#pragma once

#include <cstdint>
#include <memory>

#include "../common/audio_frame.h"
#include "../common/visibility.h"

namespace zuwebrtc {

// One 10 ms block of 16-bit audio, de-interleaved and split into frequency bands for a canceller to
// work on. Belongs to one thread at a time.
class ENGINE_API AudioBuffer {
 public:
  // Samples per channel of a block on its way in, while processed, and on its way out, with their
  // channel counts. Up to 1920 samples and 8 channels each; the buffer of another format, and one
  // that there is no memory for, has 0 frames and 0 bands, hands out null samples and does nothing.
  AudioBuffer(int input_num_frames, int num_input_channels, int process_num_frames,
              int num_process_channels, int output_num_frames);
  ~AudioBuffer();

  // Takes the frame's samples in, channel by channel.
  void DeinterleaveFrom(AudioFrame* frame);

  // Fills the frame with the buffer's samples; data_changed false leaves the frame's samples as
  // they are.
  void InterleaveTo(AudioFrame* frame, bool data_changed);

  int num_frames() const;           // Samples per channel while processed.
  int num_bands() const;            // 1 up to 16 kHz, one more per further 16 kHz.
  int num_frames_per_band() const;  // Samples per channel and band.

  // Whole-band samples, [channel][sample]; the pointers live as long as the buffer.
  const int16_t* const* channels_const() const;

  // The bands of one channel, [band][sample]; the pointers live as long as the buffer.
  int16_t* const* split_bands(int channel);
  const int16_t* const* split_bands_const(int channel) const;

 private:
  struct Bands;
  std::unique_ptr<Bands> m_bands;
};

}  // namespace zuwebrtc
