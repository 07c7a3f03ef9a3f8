#include "desktop/codec/parts/lost_block.h"

#include <algorithm>
#include <utility>

#include "desktop/common/counts.h"

namespace desktop {

LostBlock::LostBlock(size_t samples, size_t channels) : m_channels(channels), m_block(samples) {}

void LostBlock::Arrived(const short* block) {
  std::copy_n(block, m_block.size(), m_block.begin());
  m_lost = false;
}

const short* LostBlock::Lost() {
  const size_t frames = m_block.size() / m_channels;
  if (m_lost) std::fill(m_block.begin(), m_block.end(), short{0});
  m_lost = true;
  for (size_t i = 0; i < frames / 2; ++i) {
    for (size_t c = 0; c < m_channels; ++c) {
      std::swap(m_block[i * m_channels + c], m_block[(frames - 1 - i) * m_channels + c]);
    }
  }
  for (size_t i = 0; i < frames; ++i) {
    const double gain = 1 - Ratio(i, frames);
    for (size_t c = 0; c < m_channels; ++c) {
      short& sample = m_block[i * m_channels + c];
      sample = static_cast<short>(sample * gain);
    }
  }
  return m_block.data();
}

}  // namespace desktop
