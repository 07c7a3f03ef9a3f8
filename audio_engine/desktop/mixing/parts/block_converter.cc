#include "desktop/mixing/parts/block_converter.h"

#include <algorithm>

#include "desktop/common/counts.h"

namespace desktop {

void BlockConverter::Put(const zuwebrtc::AudioFrame& block, int rate, int channels) {
  constexpr int kMaxSamples = zuwebrtc::AudioFrame::kMaxDataSizeSamples;
  const int from = block.num_channels_;
  const int frames = from > 0 ? std::clamp(block.samples_per_channel_, 0, kMaxSamples / from) : 0;
  if (frames == 0 || rate <= 0 || channels <= 0) return;
  m_samples.erase(m_samples.begin(), m_samples.end() - Offset(Waiting()));
  m_first = 0;

  if (block.sample_rate_hz_ == rate && from == channels) {
    m_samples.insert(m_samples.end(), block.data_, block.data_ + frames * from);
    return;
  }
  const std::array<int, 4> path = {std::max(block.sample_rate_hz_, 0), from, rate, channels};
  if (m_resampler == nullptr || path != m_path) {
    m_resampler = std::make_unique<Resampler>(path[0], path[1], path[2], path[3], kMaxSamples);
    m_path = path;
  }
  if (!m_resampler->IsOpen()) return;
  const size_t before = m_samples.size();
  m_samples.resize(before + m_resampler->MaxFramesFor(Size(frames)) * Size(channels));
  const size_t got = m_resampler->Convert(block.data_, Size(frames), m_samples.data() + before);
  m_samples.resize(before + got * Size(channels));
}

void BlockConverter::AddTo(int32_t* sums, size_t count) {
  const size_t given = std::min(count, Waiting());
  for (size_t i = 0; i < given; ++i) sums[i] += m_samples[m_first + i];
  m_first += given;
}

}  // namespace desktop
