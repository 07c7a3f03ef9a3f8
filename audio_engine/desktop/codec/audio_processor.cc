#include "engine_api/codec/audio_processor.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/output_queue.h"
#include "desktop/codec/parts/stream_reader.h"
#include "desktop/dsp/rate/resampler.h"
#include "engine_api/platform/log.h"

namespace {

using desktop::CodecSetup;

// Samples have no variant. Nothing for a format that no codec codes.
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
      OutputDebugInfo("audio processor: cannot convert codec %d (raw id %d) to %d (raw id %d)",
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
    while (const int samples = m_reader->Next(&block)) {
      const uint32_t frames = static_cast<uint32_t>(samples / m_sourceChannels);
      const uint32_t converted = m_resampler->Convert(block, frames, m_converted.data());
      Write(m_converted.data(), converted * static_cast<uint32_t>(m_targetChannels));
    }
    *outLen = static_cast<uint32_t>(m_queue->given());
  }

 private:
  bool Open(const CodecSetup& source, const CodecSetup& target) {
    m_reader = desktop::StreamReader::Create(source, &m_log);
    if (m_reader == nullptr || source.rate <= 0 || target.rate <= 0 || target.channels < 1) {
      return false;
    }
    m_sourceChannels = source.channels;
    m_targetChannels = target.channels;
    const auto most = static_cast<uint32_t>(desktop::kMaxFrameSamples / source.channels);
    m_resampler.emplace(static_cast<uint32_t>(source.rate), static_cast<uint32_t>(source.channels),
                        static_cast<uint32_t>(target.rate), static_cast<uint32_t>(target.channels),
                        most);
    if (!m_resampler->IsOpen()) return false;
    m_converted.resize(m_resampler->MostFramesFor(most) * static_cast<size_t>(target.channels));
    if (target.variant == nullptr) {
      m_queue.emplace(static_cast<size_t>(target.channels) * sizeof(short));
      return true;
    }
    m_encoder = desktop::FrameEncoder::Create(target, &m_log);
    if (m_encoder == nullptr) return false;
    m_queue.emplace(desktop::FrameHeader(target));
    m_frame.resize(static_cast<size_t>(m_encoder->samplesPerFrame()));
    return true;
  }

  void Write(const short* samples, size_t count) {
    if (m_encoder == nullptr) {
      return Add(reinterpret_cast<const unsigned char*>(samples), count * sizeof(short));
    }
    while (count > 0) {
      const size_t taken = std::min(count, m_frame.size() - m_filled);
      std::copy_n(samples, taken, m_frame.begin() + static_cast<std::ptrdiff_t>(m_filled));
      samples += taken;
      count -= taken;
      m_filled += taken;
      if (m_filled < m_frame.size()) return;
      m_filled = 0;
      unsigned char packet[desktop::kMaxFrameBytes];
      Add(packet, static_cast<size_t>(m_encoder->Encode(m_frame.data(), packet)));
    }
  }

  void Add(const unsigned char* data, size_t bytes) {
    if (m_queue->Add(data, bytes) || !m_log.IsFirst()) return;
    OutputDebugInfo("audio processor: too much output waits, some is dropped");
  }

  desktop::LogOnce m_log;
  std::unique_ptr<desktop::StreamReader> m_reader;  // Null when nothing can be converted.
  int m_sourceChannels = 0;
  int m_targetChannels = 0;
  std::optional<desktop::Resampler> m_resampler;
  std::vector<short> m_converted;
  std::unique_ptr<desktop::FrameEncoder> m_encoder;  // Null for samples.
  std::vector<short> m_frame;                        // Fills up to one frame of the encoder.
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
