#include "desktop/live/packet_player.h"

#include <algorithm>
#include <cmath>

#include "desktop/dsp/dynamics/volume.h"
#include "desktop/platform/log.h"

namespace desktop {

namespace {

constexpr int kTickMs = 10;

// When less than this waits, the next block may find too little.
constexpr int kLowMs = 20;

// A gap of more than this is no loss, but another place of the stream.
constexpr int kMaxGapMs = 1000;
constexpr int kTicksPerReport = 10;

// More than the longest packet holds.
constexpr size_t kQueueSeconds = 8;

}  // namespace

PacketPlayer::PacketPlayer(IAudioFramePlayerNotify* notify, uint32_t stream, uint32_t rate,
                           uint32_t channels)
    : m_notify(notify),
      m_stream(stream),
      m_rate(rate),
      m_channels(channels),
      m_queue(kQueueSeconds * rate * channels) {}

int PacketPlayer::WaitingMs() const {
  return static_cast<int>(m_queue.Waiting() * 1000 / (size_t{m_rate} * m_channels));
}

void PacketPlayer::Work(uint32_t deviceMs) {
  bool more = true;
  while (more && WaitingMs() < kTargetMs) more = Pull(deviceMs);
  const int waiting = WaitingMs();
  if (m_state == State::kFilling) {
    if (waiting > 0) ++m_fillTicks;
    if (waiting >= kTargetMs || m_fillTicks * kTickMs >= kTargetMs) m_state = State::kPlaying;
  } else if (more) {
    m_state = State::kPlaying;
  } else if (waiting < kLowMs) {
    Starve();
  }
  if (++m_ticks % kTicksPerReport == 0) Report();
}

bool PacketPlayer::Pull(uint32_t deviceMs) {
  FramePlayerFeedbackInfo feedback = {};
  feedback.isFakeAudioFrame = m_decoder != nullptr && m_decoder->IsMadeUp();
  feedback.playDelayMS = WaitingMs() + static_cast<double>(deviceMs);
  const double delayMs = feedback.playDelayMS;
  if (!m_notify->OnPullAudioFrame(m_stream, m_packet, m_first, feedback)) return false;
  ++m_pulled;
  m_delaysMs += delayMs;
  const size_t before = m_queued;
  TakePacket();
  m_first = false;
  return m_queued > before;
}

void PacketPlayer::TakePacket() {
  if (!SetCodec(m_packet.codecType)) {
    ++m_counts.refused;
    return;
  }
  if (!m_first) ConcealLost();
  m_lastIndex = m_packet.frameIndex;

  const bool whole = m_packet.frameLength <= sizeof m_packet.frameData && m_packet.discard == 0;
  if (!whole) {
    Queue(m_decoder->Conceal(), true);
    return;
  }
  for (int at = 0; at < m_packet.frameLength;) {
    int taken = 0;
    const short* const samples =
        m_decoder->Decode(m_packet.frameData + at, m_packet.frameLength - at, &taken);
    Queue(samples, m_decoder->IsMadeUp());
    at += taken;
  }
}

// Makes the decoder of a codec, once for all its packets.
bool PacketPlayer::SetCodec(int rawId) {
  if (m_rawId == rawId) return m_decoder != nullptr;
  m_rawId = rawId;
  m_decoder = ConcealingDecoder::Create(rawId);
  if (m_decoder == nullptr) {
    LogRefusal("player: no codec for raw id %d", rawId);
    return false;
  }
  m_resampler = std::make_unique<Resampler>(static_cast<uint32_t>(m_decoder->Rate()),
                                            static_cast<uint32_t>(m_decoder->Channels()), m_rate,
                                            m_channels, m_decoder->Frames());
  m_converted.resize(m_resampler->MaxFramesFor(m_decoder->Frames()) * size_t{m_channels});
  return true;
}

// Makes up the packets that were lost on the way, by which the index has jumped. An owner that does
// not count leaves the index as it is.
void PacketPlayer::ConcealLost() {
  const auto lost = static_cast<int32_t>(m_packet.frameIndex - m_lastIndex) - 1;
  if (lost <= 0 || lost > kMaxGapMs / std::max(1, m_decoder->PacketMs())) return;
  for (int32_t i = 0; i < lost; ++i) Queue(m_decoder->Conceal(), true);
}

// Goes on with made-up sound, until that is silent, when the notify has nothing and little waits.
void PacketPlayer::Starve() {
  m_state = State::kStarving;
  if (m_decoder != nullptr && !m_decoder->IsSilent()) return Queue(m_decoder->Conceal(), true);
  if (m_queue.Waiting() > 0) return;
  m_state = State::kFilling;
  m_fillTicks = 0;
}

void PacketPlayer::Queue(const short* samples, bool madeUp) {
  ++(madeUp ? m_counts.concealed : m_counts.played);
  const size_t frames = m_decoder->Frames();
  m_volume = VolumeOf(samples, frames * static_cast<size_t>(m_decoder->Channels()));
  const size_t converted = m_resampler->Convert(samples, frames, m_converted.data());
  const size_t count = converted * m_channels;
  if (m_queue.Write(m_converted.data(), count)) {
    m_queued += count;
  } else {
    ++m_counts.dropped;
  }
}

void PacketPlayer::Report() {
  if (m_first) return;
  if (m_wantsVolume) m_wantsVolume = m_notify->OnAudioVolume(m_stream, m_volume);
  if (m_wantsTime) m_wantsTime = m_notify->OnAudioRenderPTS(m_stream, m_packet.timestamp);
}

void PacketPlayer::Render(short* samples, size_t frames) {
  const size_t wanted = frames * m_channels;
  const State state = m_state;
  const size_t got = state == State::kFilling ? 0 : std::min(wanted, m_queue.Waiting());
  m_queue.Read(samples, got);
  if (got < wanted && state == State::kPlaying) ++m_underruns;
  std::fill(samples + got, samples + wanted, short{0});
}

PacketPlayer::Counts PacketPlayer::GetCounts() const {
  Counts counts = m_counts;
  counts.underruns = m_underruns;
  counts.delayMs = m_pulled > 0 ? static_cast<uint32_t>(std::lround(m_delaysMs / m_pulled)) : 0;
  return counts;
}

}  // namespace desktop
