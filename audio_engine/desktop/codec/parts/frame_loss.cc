#include "desktop/codec/parts/frame_loss.h"

#include <algorithm>
#include <utility>

namespace desktop {

FrameLoss::FrameLoss(int samples, int channels)
    : m_channels(channels), m_frame(static_cast<size_t>(samples)) {}

void FrameLoss::Arrived(const short* frame) {
  std::copy_n(frame, m_frame.size(), m_frame.begin());
  m_lost = false;
}

const short* FrameLoss::Lost() {
  const size_t channels = static_cast<size_t>(m_channels);
  const size_t frames = m_frame.size() / channels;
  if (m_lost) std::fill(m_frame.begin(), m_frame.end(), short{0});
  m_lost = true;
  for (size_t i = 0; i < frames / 2; ++i) {
    for (size_t c = 0; c < channels; ++c) {
      std::swap(m_frame[i * channels + c], m_frame[(frames - 1 - i) * channels + c]);
    }
  }
  for (size_t i = 0; i < frames; ++i) {
    const double gain = 1 - static_cast<double>(i) / static_cast<double>(frames);
    for (size_t c = 0; c < channels; ++c) {
      short& sample = m_frame[i * channels + c];
      sample = static_cast<short>(sample * gain);
    }
  }
  return m_frame.data();
}

}  // namespace desktop
