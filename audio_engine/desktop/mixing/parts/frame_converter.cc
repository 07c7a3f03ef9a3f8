#include "desktop/mixing/parts/frame_converter.h"

#include <algorithm>

namespace desktop {

void FrameConverter::Put(const zuwebrtc::AudioFrame& frame, int rate, int channels) {
  const int most = zuwebrtc::AudioFrame::kMaxDataSizeSamples;
  const int frames = frame.num_channels_ > 0
                         ? std::clamp(frame.samples_per_channel_, 0, most / frame.num_channels_)
                         : 0;
  if (frames == 0 || rate <= 0 || channels <= 0) return;
  m_samples.erase(m_samples.begin(), m_samples.begin() + static_cast<ptrdiff_t>(m_first));
  m_first = 0;

  const auto count = static_cast<size_t>(frames) * static_cast<size_t>(frame.num_channels_);
  if (frame.sample_rate_hz_ == rate && frame.num_channels_ == channels) {
    m_samples.insert(m_samples.end(), frame.data_, frame.data_ + count);
    return;
  }
  const int from[2] = {frame.sample_rate_hz_, frame.num_channels_};
  const int to[2] = {rate, channels};
  if (m_resampler == nullptr || !std::equal(from, from + 2, m_from) ||
      !std::equal(to, to + 2, m_to)) {
    m_resampler = std::make_unique<Resampler>(
        static_cast<uint32_t>(std::max(from[0], 0)), static_cast<uint32_t>(from[1]),
        static_cast<uint32_t>(rate), static_cast<uint32_t>(channels), static_cast<uint32_t>(most));
    std::copy_n(from, 2, m_from);
    std::copy_n(to, 2, m_to);
  }
  if (!m_resampler->IsOpen()) return;
  const size_t before = m_samples.size();
  const auto given = static_cast<uint32_t>(frames);
  m_samples.resize(before + m_resampler->MaxFramesFor(given) * static_cast<size_t>(channels));
  const size_t got = m_resampler->Convert(frame.data_, given, m_samples.data() + before);
  m_samples.resize(before + got * static_cast<size_t>(channels));
}

void FrameConverter::AddTo(int32_t* sums, size_t samples) {
  const size_t count = std::min(samples, Waiting());
  for (size_t i = 0; i < count; ++i) sums[i] += m_samples[m_first + i];
  m_first += count;
}

}  // namespace desktop
