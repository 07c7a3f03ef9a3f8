#include "desktop/live/capture_cleaner.h"

#include <algorithm>
#include <cmath>

namespace desktop {

CaptureCleaner::CaptureCleaner(DeviceFormat format)
    : m_format(format), m_played(PlayFeed::What::kPlayed, format), m_channel(format.BlockFrames()) {
  m_chain.EnableDenoise(true);
  m_chain.EnableGainControl(true);
  for (Biquad& filter : m_highPass) {
    filter.Design({BiquadKind::kHighPass, 100, 0.707, 0}, static_cast<int>(format.rate));
  }
  m_frame.samples_per_channel_ = static_cast<int>(format.BlockFrames());
  m_frame.sample_rate_hz_ = static_cast<int>(format.rate);
  m_frame.num_channels_ = static_cast<int>(format.channels);
  Loudspeaker::Shared().Add(&m_played);
}

CaptureCleaner::~CaptureCleaner() { Loudspeaker::Shared().Remove(&m_played); }

VADResultKind CaptureCleaner::Process(short* samples, size_t frames) {
  const size_t count = frames * m_format.channels;
  // Once something has played, the canceller hears silence from the far end while nothing plays.
  m_plays = m_played.Read(m_frame.data_, frames) || m_plays;
  if (m_plays) m_chain.ProcessRender(m_frame);
  HighPass(samples, frames);
  std::copy_n(samples, count, m_frame.data_);
  m_chain.ProcessCapture(m_frame);
  std::copy_n(m_frame.data_, count, samples);
  return static_cast<VADResultKind>(m_frame.vad_activity_);
}

void CaptureCleaner::HighPass(short* samples, size_t frames) {
  const size_t channels = m_format.channels;
  for (size_t channel = 0; channel < channels; ++channel) {
    for (size_t i = 0; i < frames; ++i) m_channel[i] = samples[i * channels + channel];
    m_highPass[channel].Process(m_channel.data(), frames);
    for (size_t i = 0; i < frames; ++i) {
      const float limited = std::clamp(m_channel[i], -32768.0F, 32767.0F);
      samples[i * channels + channel] = static_cast<short>(std::lrint(limited));
    }
  }
}

}  // namespace desktop
