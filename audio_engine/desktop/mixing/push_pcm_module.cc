#include "engine_api/mixing/push_pcm_module.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "desktop/dsp/dynamics/sum_limiter.h"
#include "desktop/dsp/rate/resampler.h"
#include "desktop/platform/log.h"

namespace {

constexpr uint32_t kVersion = 1;
constexpr uint32_t kMaxStreams = 64;
// The most bytes of one stream in one push.
constexpr uint32_t kMaxBytes = 16 << 20;

// One stream's part of the head.
struct Stream {
  uint32_t rate;
  uint32_t channels;
  uint32_t precision;
  uint32_t bytes;
};

void Append(std::string& head, uint32_t word) {
  head.append(reinterpret_cast<const char*>(&word), sizeof word);
}

// Returns the streams of pushed data; none when the head is not valid or the samples are cut short.
std::vector<Stream> ReadHead(const std::string& data) {
  uint32_t head[2];
  if (data.size() < sizeof head) return {};
  memcpy(head, data.data(), sizeof head);
  if (head[0] != kVersion || head[1] == 0 || head[1] > kMaxStreams) return {};
  std::vector<Stream> streams(head[1]);
  uint64_t expected = sizeof head + streams.size() * sizeof(Stream);
  if (data.size() < expected) return {};
  memcpy(streams.data(), data.data() + sizeof head, streams.size() * sizeof(Stream));
  for (const Stream& stream : streams) {
    if (stream.precision != sizeof(int16_t) || stream.channels == 0 || stream.bytes > kMaxBytes) {
      return {};
    }
    expected += stream.bytes;
  }
  return data.size() == expected ? streams : std::vector<Stream>();
}

class PushPcmModule : public IPushPcmModule {
 public:
  PushPcmModule(unsigned rate, unsigned channels) : m_rate(rate), m_channels(channels) {}
  ~PushPcmModule() override = default;

  bool Process(const std::string& data, std::string& out) override {
    out.clear();
    const std::vector<Stream> streams = ReadHead(data);
    if (streams.empty() || m_rate == 0 || m_channels == 0) return false;
    m_converters.resize(std::max(m_converters.size(), streams.size()));
    m_sums.clear();
    size_t at = 2 * sizeof(uint32_t) + streams.size() * sizeof(Stream);
    for (size_t i = 0; i < streams.size(); ++i) {
      Add(m_converters[i], streams[i], data.data() + at);
      at += streams[i].bytes;
    }
    out.resize(m_sums.size() * sizeof(int16_t));
    m_limiter.Process(m_sums.data(), m_sums.size() / m_channels, m_channels,
                      reinterpret_cast<int16_t*>(out.data()));
    return true;
  }

  void Destroy() override { delete this; }

 private:
  struct Converter {
    Stream stream = {};
    std::unique_ptr<desktop::Resampler> resampler;
  };

  // Adds one stream's samples, in the module's format, to the sums.
  void Add(Converter& converter, const Stream& stream, const char* bytes) {
    const size_t blockFrames = desktop::Resampler::BlockFrames(stream.rate, m_rate);
    const bool same = converter.stream.rate == stream.rate &&
                      converter.stream.channels == stream.channels && converter.resampler;
    if (!same) {
      converter.stream = stream;
      converter.resampler = std::make_unique<desktop::Resampler>(stream.rate, stream.channels,
                                                                 m_rate, m_channels, blockFrames);
    }
    if (!converter.resampler->IsOpen()) return;
    size_t at = 0;
    std::vector<short> block(blockFrames * stream.channels);
    std::vector<short> converted(converter.resampler->MaxFramesFor(blockFrames) * m_channels);
    for (size_t left = stream.bytes / (2 * stream.channels); left > 0;) {
      const size_t frames = std::min(left, blockFrames);
      const size_t blockBytes = frames * stream.channels * sizeof(short);
      memcpy(block.data(), bytes, blockBytes);
      const size_t got = converter.resampler->Convert(block.data(), frames, converted.data());
      const size_t samples = got * m_channels;
      if (m_sums.size() < at + samples) m_sums.resize(at + samples);
      for (size_t i = 0; i < samples; ++i) m_sums[at + i] += converted[i];
      at += samples;
      bytes += blockBytes;
      left -= frames;
    }
  }

  const unsigned m_rate;
  const unsigned m_channels;
  std::vector<Converter> m_converters;
  std::vector<int32_t> m_sums;
  desktop::SumLimiter m_limiter;
};

}  // namespace

IPushPcmModule* IPushPcmModule::CreatePuchPcmModule(unsigned dstFs, unsigned dstCh,
                                                    unsigned streamCount) {
  if (streamCount > kMaxStreams) {
    desktop::LogRefusal("Pushed PCM: %u streams are more than %u", streamCount, kMaxStreams);
  }
  return new PushPcmModule(dstFs, dstCh);
}

std::string IPushPcmModule::MakeStreamInfo(unsigned* fs, unsigned* ch, unsigned* precision,
                                           unsigned* length, unsigned count) {
  std::string head;
  if (fs == nullptr || ch == nullptr || precision == nullptr || length == nullptr) return head;
  Append(head, kVersion);
  Append(head, count);
  for (unsigned i = 0; i < count; ++i) {
    for (const unsigned word : {fs[i], ch[i], precision[i], length[i]}) Append(head, word);
  }
  return head;
}
