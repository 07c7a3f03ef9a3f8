#include "engine_api/codec/audio_processor.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/output_queue.h"
#include "desktop/codec/parts/stream_reader.h"
#include "desktop/common/counts.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/platform/log.h"

namespace {

using desktop::CodecSetup;
using desktop::Unsigned;

// Returns what codes a format, which has no variant for samples; nothing for a format that no codec
// codes.
std::optional<CodecSetup> SetupOf(const AudioStreamFormat& format) {
  const desktop::CodecVariant* variant = nullptr;
  if (format.iCodec != kAudioCodecPCM) {
    variant = desktop::FindVariant(format.iRawCodecId);
    if (variant == nullptr) return std::nullopt;
  }
  return CodecSetup{variant, format.iSampleRate, format.iNumOfChannels};
}

// Reader, converter of rate and channels, and writer in a row.
class Processor final : public AudioProcessor {
 public:
  Processor(const AudioStreamFormat& in, const AudioStreamFormat& out) {
    const std::optional<CodecSetup> source = SetupOf(in);
    const std::optional<CodecSetup> target = SetupOf(out);
    if (!source || !target || !Open(*source, *target)) {
      desktop::LogRefusal("audio processor: cannot convert codec %d (raw id %d) to %d (raw id %d)",
                          in.iCodec, in.iRawCodecId, out.iCodec, out.iRawCodecId);
      m_reader.reset();
    }
  }

  ~Processor() override = default;

  void ProcessData(const void* in, uint32_t* inLen, void* out, uint32_t* outLen, int /*reserved1*/,
                   int /*reserved2*/) override {
    const uint32_t room = *outLen;
    *outLen = 0;
    if (m_reader == nullptr) return;
    m_queue->Begin(static_cast<unsigned char*>(out), out == nullptr ? 0 : room);
    m_reader->Feed(in, in == nullptr ? 0 : *inLen);
    const short* block = nullptr;
    while (const size_t samples = m_reader->Next(&block)) {
      const size_t frames =
          m_resampler->Convert(block, samples / m_sourceChannels, m_converted.data());
      Write(m_converted.data(), frames * m_targetChannels);
    }
    *outLen = static_cast<uint32_t>(m_queue->given());
  }

 private:
  bool Open(const CodecSetup& source, const CodecSetup& target) {
    m_reader = desktop::StreamReader::Create(source, &m_log);
    if (m_reader == nullptr || source.rate <= 0 || target.rate <= 0 || target.channels < 1) {
      return false;
    }
    m_sourceChannels = Unsigned(source.channels);
    m_targetChannels = Unsigned(target.channels);
    const size_t maxFrames = desktop::kMaxBlockSamples / m_sourceChannels;
    m_resampler.emplace(Unsigned(source.rate), m_sourceChannels, Unsigned(target.rate),
                        m_targetChannels, maxFrames);
    if (!m_resampler->IsOpen()) return false;
    m_converted.resize(m_resampler->MaxFramesFor(maxFrames) * m_targetChannels);
    if (target.variant == nullptr) {
      m_queue.emplace(m_targetChannels * sizeof(short));
      return true;
    }
    m_encoder = desktop::PacketEncoder::Create(target, &m_log);
    if (m_encoder == nullptr) return false;
    m_queue.emplace(desktop::PacketHeader(target));
    m_block.resize(m_encoder->blockSamples());
    return true;
  }

  void Write(const short* samples, size_t count) {
    if (m_encoder == nullptr) {
      return Add(reinterpret_cast<const unsigned char*>(samples), count * sizeof(short));
    }
    while (count > 0) {
      const size_t taken = std::min(count, m_block.size() - m_filled);
      std::copy_n(samples, taken, m_block.begin() + desktop::Offset(m_filled));
      samples += taken;
      count -= taken;
      m_filled += taken;
      if (m_filled < m_block.size()) return;
      m_filled = 0;
      unsigned char packet[desktop::kMaxPacketBytes];
      Add(packet, m_encoder->Encode(m_block.data(), packet));
    }
  }

  void Add(const unsigned char* data, size_t bytes) {
    if (m_queue->Add(data, bytes) || !m_log.IsFirst()) return;
    desktop::LogRefusal("audio processor: too much output waits, some is dropped");
  }

  desktop::LogOnce m_log;

  // Null when nothing can be converted.
  std::unique_ptr<desktop::StreamReader> m_reader;
  uint32_t m_sourceChannels = 0;
  uint32_t m_targetChannels = 0;
  std::optional<desktop::Resampler> m_resampler;
  std::vector<short> m_converted;

  // Null when the target is samples.
  std::unique_ptr<desktop::PacketEncoder> m_encoder;

  // The next block to encode, of which m_filled samples have come.
  std::vector<short> m_block;
  size_t m_filled = 0;
  std::optional<desktop::OutputQueue> m_queue;
};

}  // namespace

void AudioProcessor::Create(const AudioStreamFormat& in, const AudioStreamFormat& out,
                            AudioProcessor*& processor) {
  processor = new Processor(in, out);
}

void AudioProcessor::Release(AudioProcessor*& processor) {
  delete processor;
  processor = nullptr;
}
