#include "engine_api/aec/audio_buffer.h"

#include <algorithm>
#include <string>
#include <vector>

#include "fake_engine/aec/aec_frame_text.h"
#include "fake_engine/aec/audio_buffer.h"
#include "fake_engine/fake_engine.h"

// One band, which is the whole signal of one channel.
struct zuwebrtc::AudioBuffer::Bands {
  std::vector<int16_t> samples;
  int16_t* band = nullptr;
};

zuwebrtc::AudioBuffer::AudioBuffer(int input_num_frames, int num_input_channels,
                                   int process_num_frames, int num_process_channels,
                                   int output_num_frames)
    : m_bands(std::make_unique<Bands>()) {
  m_bands->samples.resize(static_cast<size_t>(process_num_frames));
  m_bands->band = m_bands->samples.data();
  FakeEngine::Current().Born(this, "AudioBuffer", "%d, %d, %d, %d, %d", input_num_frames,
                             num_input_channels, process_num_frames, num_process_channels,
                             output_num_frames);
}

zuwebrtc::AudioBuffer::~AudioBuffer() { FakeEngine::Current().Died(this); }

void zuwebrtc::AudioBuffer::DeinterleaveFrom(AudioFrame* frame) {
  FakeEngine::Current().Call(this, "DeinterleaveFrom(%s)", FrameText(*frame).c_str());
  std::copy_n(frame->data_, m_bands->samples.size(), m_bands->samples.begin());
}

void zuwebrtc::AudioBuffer::InterleaveTo(AudioFrame* frame, bool data_changed) {
  FakeEngine::Current().Call(this, "InterleaveTo(%s, %s)", FrameText(*frame).c_str(),
                             data_changed ? "true" : "false");
  if (data_changed) std::copy(m_bands->samples.begin(), m_bands->samples.end(), frame->data_);
  FakeEngine::Current().script<AudioBufferScript>().interleave(*frame);
}

int zuwebrtc::AudioBuffer::num_frames() const { return static_cast<int>(m_bands->samples.size()); }
int zuwebrtc::AudioBuffer::num_bands() const { return 1; }
int zuwebrtc::AudioBuffer::num_frames_per_band() const { return num_frames(); }

const int16_t* const* zuwebrtc::AudioBuffer::channels_const() const { return &m_bands->band; }

int16_t* const* zuwebrtc::AudioBuffer::split_bands(int channel) {
  RequireOrDie(channel == 0, "the one channel");
  return &m_bands->band;
}

const int16_t* const* zuwebrtc::AudioBuffer::split_bands_const(int channel) const {
  RequireOrDie(channel == 0, "the one channel");
  return &m_bands->band;
}
