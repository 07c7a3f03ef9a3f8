#include "desktop/live/play_feed.h"

#include <algorithm>

namespace desktop {

namespace {

constexpr auto kFormat = Loudspeaker::kFormat;
constexpr size_t kBlockFrames = kFormat.BlockFrames();
constexpr size_t kSamplesPerMs = kFormat.rate * kFormat.channels / 1000;
constexpr size_t kWaitingMs = 80;
constexpr size_t kMaxWaitingMs = 300;

}  // namespace

PlayFeed::PlayFeed(What what, DeviceFormat target)
    : m_what(what),
      m_target(target),
      m_ring(1000 * kSamplesPerMs),
      m_resampler(kFormat.rate, kFormat.channels, target.rate, target.channels, kBlockFrames),
      m_block(kFormat.BlockFrames() * kFormat.channels) {
  m_converted.resize((m_resampler.MaxFramesFor(kBlockFrames) + target.BlockFrames()) *
                     target.channels);
}

void PlayFeed::OnPlayed(const PlayedBlock& block) {
  m_replaces = block.replacesMicrophone;
  const short* const samples = m_what == What::kPlayed ? block.played : block.feedback;
  if (samples != nullptr) m_ring.Write(samples, block.frames * kFormat.channels);
}

bool PlayFeed::Read(short* samples, size_t frames) {
  if (m_ring.Waiting() > kMaxWaitingMs * kSamplesPerMs) {
    while (m_ring.Waiting() > kWaitingMs * kSamplesPerMs &&
           m_ring.Read(m_block.data(), m_block.size())) {
    }
  }
  m_flows = m_flows || m_ring.Waiting() >= kWaitingMs * kSamplesPerMs;
  const size_t count = frames * m_target.channels;
  while (m_flows && m_waiting < count) m_flows = ConvertBlock();

  const size_t got = m_flows ? count : std::min(m_waiting, count);
  std::copy_n(m_converted.begin(), got, samples);
  std::fill(samples + got, samples + count, short{0});
  std::copy(m_converted.data() + got, m_converted.data() + m_waiting, m_converted.data());
  m_waiting -= got;
  return got > 0;
}

bool PlayFeed::ConvertBlock() {
  if (!m_ring.Read(m_block.data(), m_block.size())) return false;
  const size_t frames =
      m_resampler.Convert(m_block.data(), kBlockFrames, m_converted.data() + m_waiting);
  m_waiting += frames * m_target.channels;
  return true;
}

}  // namespace desktop
