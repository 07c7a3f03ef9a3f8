#include "engine_api/aec/audio_buffer.h"

#include <algorithm>
#include <exception>
#include <vector>

#include "desktop/aec/parts/band_split.h"
#include "desktop/common/counts.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/platform/log.h"
#include "engine_api/common/channel_buffer.h"

namespace zuwebrtc {

namespace {

// 10 ms at 192 kHz.
constexpr int kMaxFrames = 1920;
constexpr int kMaxChannels = 8;

bool Accepts(int frames, int channels) {
  return frames >= 1 && frames <= kMaxFrames && channels >= 1 && channels <= kMaxChannels;
}

// What a buffer hands out where it has nothing.
int16_t* const kNothing[kMaxChannels] = {};

int BandsOf(int frames) { return frames == 320 ? 2 : frames == 480 ? 3 : 1; }

using desktop::Size;
using desktop::Unsigned;

}  // namespace

struct AudioBuffer::Bands {
  Bands(int inFrames, int inChannels, int frames, int channels, int outFrames)
      : inFrames(inFrames),
        inChannels(inChannels),
        outFrames(outFrames),
        whole(frames, channels),
        split(frames, channels, BandsOf(frames)),
        in(Unsigned(inFrames), Unsigned(inChannels), Unsigned(frames), Unsigned(channels),
           Unsigned(inFrames)),
        out(Unsigned(frames), Unsigned(channels), Unsigned(outFrames), Unsigned(channels),
            Unsigned(frames)),
        interleaved(std::max({Size(inFrames) * Size(inChannels),
                              in.MaxFramesFor(Size(inFrames)) * Size(channels),
                              out.MaxFramesFor(Size(frames)) * Size(channels)})) {
    for (int channel = 0; split.num_bands_ > 1 && channel < channels; ++channel) {
      filters.emplace_back(Size(split.num_bands_), Size(frames));
    }
  }

  // Nothing for a channel that there is not.
  int16_t* const* BandsOfChannel(int channel) const {
    if (channel < 0 || channel >= whole.num_channels_) return kNothing;
    return split.num_bands_ == 1 ? &whole.channels_[Size(channel)]
                                 : &split.bands_[Size(channel) * Size(split.num_bands_)];
  }

  const int inFrames;
  const int inChannels;
  const int outFrames;
  ChannelBuffer<int16_t> whole;

  // The bands of a block. Not used where the whole is the only one.
  ChannelBuffer<int16_t> split;
  desktop::Resampler in;
  desktop::Resampler out;
  std::vector<int16_t> interleaved;

  // One for each channel.
  std::vector<desktop::BandSplit> filters;
};

AudioBuffer::AudioBuffer(int input_num_frames, int num_input_channels, int process_num_frames,
                         int num_process_channels, int output_num_frames) {
  if (!Accepts(input_num_frames, num_input_channels) ||
      !Accepts(process_num_frames, num_process_channels) ||
      !Accepts(output_num_frames, num_process_channels)) {
    desktop::LogRefusal("no audio buffer from %d frames of %d channels by %d of %d to %d",
                        input_num_frames, num_input_channels, process_num_frames,
                        num_process_channels, output_num_frames);
    return;
  }
  try {
    m_bands = std::make_unique<Bands>(input_num_frames, num_input_channels, process_num_frames,
                                      num_process_channels, output_num_frames);
  } catch (const std::exception&) {
    desktop::LogRefusal("no memory for an audio buffer");
  }
}

AudioBuffer::~AudioBuffer() = default;

void AudioBuffer::DeinterleaveFrom(AudioFrame* frame) {
  if (!m_bands || frame == nullptr) return;
  Bands& bands = *m_bands;
  const int wanted = std::min(bands.inFrames * bands.inChannels, AudioFrame::kMaxDataSizeSamples);
  std::copy(frame->data_, frame->data_ + wanted, bands.interleaved.begin());
  bands.in.Convert(bands.interleaved.data(), Size(bands.inFrames), bands.interleaved.data());

  const int channels = bands.whole.num_channels_;
  for (int channel = 0; channel < channels; ++channel) {
    const size_t index = Size(channel);
    int16_t* const samples = bands.whole.channels_[index];
    for (int i = 0; i < bands.whole.num_frames_; ++i) {
      const size_t at = Size(i * channels);
      samples[i] = bands.interleaved[at + index];
    }
    if (!bands.filters.empty()) bands.filters[index].Analyse(samples, split_bands(channel));
  }
}

void AudioBuffer::InterleaveTo(AudioFrame* frame, bool data_changed) {
  if (!m_bands || frame == nullptr) return;
  Bands& bands = *m_bands;
  const int channels = bands.whole.num_channels_;
  if (!data_changed || bands.outFrames * channels > AudioFrame::kMaxDataSizeSamples) return;

  for (int channel = 0; channel < channels; ++channel) {
    const size_t index = Size(channel);
    int16_t* const samples = bands.whole.channels_[index];
    if (!bands.filters.empty()) bands.filters[index].Synthesise(split_bands(channel), samples);
    for (int i = 0; i < bands.whole.num_frames_; ++i) {
      const size_t at = Size(i * channels);
      bands.interleaved[at + index] = samples[i];
    }
  }
  bands.out.Convert(bands.interleaved.data(), Size(bands.whole.num_frames_),
                    bands.interleaved.data());
  std::copy_n(bands.interleaved.begin(), bands.outFrames * channels, frame->data_);
  frame->samples_per_channel_ = bands.outFrames;
  frame->num_channels_ = channels;
}

int AudioBuffer::num_frames() const { return m_bands ? m_bands->whole.num_frames_ : 0; }
int AudioBuffer::num_bands() const { return m_bands ? m_bands->split.num_bands_ : 0; }
int AudioBuffer::num_frames_per_band() const {
  return m_bands ? m_bands->split.num_frames_per_band_ : 0;
}

const int16_t* const* AudioBuffer::channels_const() const {
  return m_bands ? m_bands->whole.channels_.get() : kNothing;
}

int16_t* const* AudioBuffer::split_bands(int channel) {
  return m_bands ? m_bands->BandsOfChannel(channel) : kNothing;
}

const int16_t* const* AudioBuffer::split_bands_const(int channel) const {
  return m_bands ? m_bands->BandsOfChannel(channel) : kNothing;
}

}  // namespace zuwebrtc
