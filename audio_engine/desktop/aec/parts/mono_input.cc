#include "desktop/aec/parts/mono_input.h"

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
    : m_channels(Size(channels)),
      m_resampler(Unsigned(rate), Unsigned(channels), Unsigned(TrackedRate(rate)), 1, kMaxFrames),
      m_frames(kMaxFrames * Size(channels)),
      m_mono(m_resampler.MaxFramesFor(kMaxFrames)) {}

void MonoInput::Feed(const short* samples, size_t count,
                     const std::function<void(const short*, size_t)>& take) {
  for (size_t i = 0; i < count; ++i) {
    m_frames[m_filled++] = samples[i];
    const bool last = i + 1 == count && m_filled % m_channels == 0;
    if (m_filled < m_frames.size() && !last) continue;
    const size_t frames = m_filled / m_channels;
    take(m_mono.data(), m_resampler.Convert(m_frames.data(), frames, m_mono.data()));
    m_filled = 0;
  }
}

}  // namespace desktop
