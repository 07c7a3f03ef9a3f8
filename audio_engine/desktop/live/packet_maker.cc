#include "desktop/live/packet_maker.h"

#include <algorithm>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/dsp/dynamics/volume.h"
#include "desktop/platform/log.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/mixing/audio_frame_player_notify.h"

namespace desktop {

namespace {

constexpr size_t kQueueSeconds = 2;
constexpr size_t kHangoverMs = 200;
constexpr int kBlocksPerVolume = 10;
constexpr size_t kMaxBytes = sizeof(AudioFrameData::frameData);

// Returns which of the two says more about a packet that has both.
VADResultKind Stronger(VADResultKind one, VADResultKind other) {
  for (const VADResultKind kind :
       {vadResultIsActive, vadResultIsActiveWithoutVoice, vadResultIsPassive}) {
    if (one == kind || other == kind) return kind;
  }
  return vadResultIsUnknown;
}

}  // namespace

std::unique_ptr<PacketMaker> PacketMaker::Create(IAudioFramePackerNotify* notify, int rawId,
                                                 DeviceFormat format) {
  const AudioStreamFormat coded = FormatFromRawCodecId(rawId);
  const CodecSetup setup = {FindVariant(rawId), coded.iSampleRate, coded.iNumOfChannels};
  std::unique_ptr<PacketEncoder> encoder;
  if (setup.variant != nullptr) encoder = PacketEncoder::Create(setup);
  if (encoder == nullptr) {
    LogRefusal("packer: no codec for raw id %d", rawId);
    return nullptr;
  }
  const DeviceFormat target = {static_cast<uint32_t>(setup.rate),
                               static_cast<uint32_t>(setup.channels)};
  return std::unique_ptr<PacketMaker>(new PacketMaker(notify, format, target, std::move(encoder)));
}

PacketMaker::PacketMaker(IAudioFramePackerNotify* notify, DeviceFormat format, DeviceFormat target,
                         std::unique_ptr<PacketEncoder> encoder)
    : m_notify(notify),
      m_format(format),
      m_target(target),
      m_encoder(std::move(encoder)),
      m_queue(kQueueSeconds * format.rate * format.channels),
      m_block(format.BlockFrames() * format.channels),
      m_detector(format.rate, format.channels),
      m_resampler(format.rate, format.channels, target.rate, target.channels, format.BlockFrames()),
      m_converted(m_resampler.MaxFramesFor(format.BlockFrames()) * target.channels),
      m_samples(m_encoder->blockSamples()),
      m_packetFrames(m_encoder->blockFrames()) {}

void PacketMaker::Put(const short* samples, size_t frames) {
  const size_t count = frames * m_format.channels;
  if (!m_queue.Write(samples, count)) m_dropped += count;
}

void PacketMaker::Work() {
  while (m_queue.Read(m_block.data(), m_block.size())) TakeBlock();
}

void PacketMaker::TakeBlock() {
  m_voice = Stronger(m_voice, m_detector.Detect(m_block.data(), m_block.size()));
  if (++m_blocks % kBlocksPerVolume == 0) {
    m_notify->OnAudioCaptureVolume(VolumeOf(m_block.data(), m_block.size()));
  }

  const size_t converted =
      m_resampler.Convert(m_block.data(), m_format.BlockFrames(), m_converted.data()) *
      m_target.channels;
  for (size_t taken = 0; taken < converted;) {
    const size_t count = std::min(converted - taken, m_samples.size() - m_filled);
    std::copy_n(m_converted.data() + taken, count, m_samples.data() + m_filled);
    taken += count;
    m_filled += count;
    if (m_filled == m_samples.size()) Pack();
  }
}

void PacketMaker::Pack() {
  const size_t timeMs = m_packets++ * m_packetFrames * 1000 / m_target.rate;
  const VADResultKind voice = m_voice;
  m_filled = 0;
  m_voice = vadResultIsUnknown;
  m_sinceVoiceMs += m_packetFrames * 1000 / m_target.rate;
  if (voice == vadResultIsActive) m_sinceVoiceMs = 0;

  // The encoder codes what is left out, too, so that its state goes on and voice does not start
  // with a click.
  unsigned char bytes[kMaxPacketBytes];
  const size_t length = m_encoder->Encode(m_samples.data(), bytes);
  if (m_leavesOutSilence && m_sinceVoiceMs > kHangoverMs) {
    ++m_counts.leftOut;
  } else if (length == 0 || length > kMaxBytes) {
    ++m_counts.tooLong;
  } else {
    ++m_counts.packed;
    m_notify->OnPackAudioFrame(bytes, static_cast<uint32_t>(length), voice,
                               static_cast<uint32_t>(timeMs), 0);
  }
}

uint32_t PacketMaker::DelayMs() const {
  return static_cast<uint32_t>((m_packetFrames + m_resampler.LagFrames()) * 1000 / m_target.rate);
}

PacketMaker::Counts PacketMaker::GetCounts() const {
  Counts counts = m_counts;
  counts.droppedSamples = m_dropped;
  return counts;
}

}  // namespace desktop
