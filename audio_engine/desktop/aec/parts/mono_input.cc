#include "desktop/aec/parts/mono_input.h"

#include <cmath>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

// The most frames that are converted at once.
constexpr size_t kMaxFrames = 480;

}  // namespace

bool MonoInput::Accepts(int rate, int channels) {
  return rate >= 8000 && rate <= 48000 && channels >= 1 && channels <= 8;
}

MonoInput::MonoInput(int rate, int channels)
    : m_mix(rate, Size(channels)),
      m_resampler(Unsigned(rate), 1, Unsigned(TrackedRate(rate)), 1, kMaxFrames),
      m_frame(Size(channels)),
      m_block(kMaxFrames),
      m_mono(m_resampler.MaxFramesFor(kMaxFrames)) {}

void MonoInput::Feed(const short* samples, size_t count,
                     const std::function<void(const short*, size_t)>& take) {
  for (size_t i = 0; i < count; ++i) {
    m_frame[m_channel++] = samples[i];
    if (m_channel == m_frame.size()) {
      m_channel = 0;
      m_block[m_filled++] = static_cast<short>(std::lrint(m_mix.Add(m_frame.data())));
    }
    const bool last = i + 1 == count && m_channel == 0;
    if (m_filled < m_block.size() && !last) continue;
    take(m_mono.data(), m_resampler.Convert(m_block.data(), m_filled, m_mono.data()));
    m_filled = 0;
  }
}

}  // namespace desktop
