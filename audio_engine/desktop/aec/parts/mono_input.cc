#include "desktop/aec/parts/mono_input.h"

namespace desktop {

namespace {

constexpr uint32_t kFrames = 480;  // Of one piece.

uint32_t Unsigned(int value) { return static_cast<uint32_t>(value); }

}  // namespace

bool MonoInput::Accepts(int rate, int channels) {
  return rate >= 8000 && rate <= 48000 && channels >= 1 && channels <= 8;
}

MonoInput::MonoInput(int rate, int channels)
    : m_channels(channels),
      m_resampler(Unsigned(rate), Unsigned(channels), Unsigned(TrackedRate(rate)), 1, kFrames),
      m_frames(kFrames * Unsigned(channels)),
      m_mono(m_resampler.MostFramesFor(kFrames)) {}

void MonoInput::Feed(const short* samples, int count,
                     const std::function<void(const short*, int)>& take) {
  const auto channels = Unsigned(m_channels);
  for (int i = 0; i < count; ++i) {
    m_frames[m_filled++] = samples[i];
    const bool last = i + 1 == count && m_filled % channels == 0;
    if (m_filled < m_frames.size() && !last) continue;
    const uint32_t frames = static_cast<uint32_t>(m_filled) / channels;
    take(m_mono.data(),
         static_cast<int>(m_resampler.Convert(m_frames.data(), frames, m_mono.data())));
    m_filled = 0;
  }
}

}  // namespace desktop
