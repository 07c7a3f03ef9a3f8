#include "desktop/live/frame_packer.h"

#include <algorithm>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/common/counts.h"
#include "desktop/dsp/dynamics/volume.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/mixing/audio_frame_player_notify.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

constexpr int kQueueSeconds = 2;
constexpr int kHangoverMs = 200;
constexpr int kBlocksPerVolume = 10;
constexpr size_t kMaxBytes = sizeof(AudioFrameData::frameData);

// The one that says more of a frame that has both.
VADResultKind Stronger(VADResultKind one, VADResultKind other) {
  for (const VADResultKind kind :
       {vadResultIsActive, vadResultIsActiveWithoutVoice, vadResultIsPassive}) {
    if (one == kind || other == kind) return kind;
  }
  return vadResultIsUnknown;
}

}  // namespace

std::unique_ptr<FramePacker> FramePacker::Create(IAudioFramePackerNotify* notify, int rawId,
                                                 int rate, int channels) {
  const AudioStreamFormat format = FormatFromRawCodecId(rawId);
  const CodecSetup setup = {FindVariant(rawId), format.iSampleRate, format.iNumOfChannels};
  std::unique_ptr<PacketEncoder> encoder;
  if (setup.variant != nullptr) encoder = PacketEncoder::Create(setup);
  if (encoder == nullptr) {
    OutputDebugInfo("packer: no codec for raw id %d", rawId);
    return nullptr;
  }
  return std::unique_ptr<FramePacker>(
      new FramePacker(notify, rate, channels, setup, std::move(encoder)));
}

FramePacker::FramePacker(IAudioFramePackerNotify* notify, int rate, int channels,
                         const CodecSetup& setup, std::unique_ptr<PacketEncoder> encoder)
    : m_notify(notify),
      m_channels(channels),
      m_setup(setup),
      m_encoder(std::move(encoder)),
      m_queue(static_cast<size_t>(kQueueSeconds * rate * channels)),
      m_block(static_cast<size_t>(rate / 100 * channels)),
      m_detector(static_cast<unsigned>(rate), static_cast<unsigned>(channels)),
      m_resampler(static_cast<uint32_t>(rate), static_cast<uint32_t>(channels),
                  static_cast<uint32_t>(setup.rate), static_cast<uint32_t>(setup.channels),
                  static_cast<uint32_t>(rate / 100)),
      m_converted(m_resampler.MaxFramesFor(static_cast<uint32_t>(rate / 100)) *
                  static_cast<size_t>(setup.channels)),
      m_frame(m_encoder->blockSamples()) {}

void FramePacker::Put(const short* samples, size_t frames) {
  const size_t count = frames * static_cast<size_t>(m_channels);
  if (!m_queue.Write(samples, count)) m_dropped += count;
}

void FramePacker::Work() {
  while (m_queue.Read(m_block.data(), m_block.size())) TakeBlock();
}

void FramePacker::TakeBlock() {
  m_voice =
      Stronger(m_voice, m_detector.Detect(m_block.data(), static_cast<unsigned>(m_block.size())));
  if (++m_blocks % kBlocksPerVolume == 0) {
    m_notify->OnAudioCaptureVolume(VolumeOf(m_block.data(), m_block.size()));
  }

  const auto frames = static_cast<uint32_t>(m_block.size()) / static_cast<uint32_t>(m_channels);
  const size_t converted = m_resampler.Convert(m_block.data(), frames, m_converted.data()) *
                           static_cast<size_t>(m_setup.channels);
  for (size_t taken = 0; taken < converted;) {
    const size_t count = std::min(converted - taken, m_frame.size() - m_inFrame);
    std::copy_n(m_converted.data() + taken, count, m_frame.data() + m_inFrame);
    taken += count;
    m_inFrame += count;
    if (m_inFrame == m_frame.size()) Pack();
  }
}

void FramePacker::Pack() {
  const int64_t frameSamples = Count(m_encoder->blockFrames());
  const int64_t timeMs = m_frames++ * frameSamples * 1000 / m_setup.rate;
  const VADResultKind voice = m_voice;
  m_inFrame = 0;
  m_voice = vadResultIsUnknown;
  m_sinceVoiceMs = voice == vadResultIsActive
                       ? 0
                       : m_sinceVoiceMs + static_cast<int>(frameSamples * 1000 / m_setup.rate);

  // Coded in any case: the state of the encoder goes on, so that voice does not start with a click.
  unsigned char bytes[kMaxPacketBytes];
  const size_t length = m_encoder->Encode(m_frame.data(), bytes);
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

uint32_t FramePacker::DelayMs() const {
  const size_t frames = m_encoder->blockFrames() + m_resampler.LagFrames();
  return Unsigned(Count(frames * 1000 / Size(m_setup.rate)));
}

FramePacker::Counts FramePacker::GetCounts() const {
  Counts counts = m_counts;
  counts.droppedSamples = m_dropped;
  return counts;
}

}  // namespace desktop
