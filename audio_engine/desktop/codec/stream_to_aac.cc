#include "engine_api/codec/stream_to_aac.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "desktop/codec/codec_table.h"
#include "desktop/codec/frame_codec.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/platform/log.h"

namespace {

using desktop::CodecSetup;
using desktop::CodecVariant;
using desktop::Coder;
using desktop::FrameSpan;
using Bytes = std::vector<unsigned char>;

constexpr int kLcFrame = 1024;
constexpr int kLcLookAhead = 2048;  // By how much the encoder alone is late.

struct Stream {
  const unsigned char* data;
  int size;
};

// A frame counts when another of its kind follows, or the end: a damaged length, or a mark that
// only looks like one, would lead astray.
template <typename Read>
bool IsConfirmed(const Stream& stream, int at, const FrameSpan& span, const Read& read) {
  if (span.state != FrameSpan::kWhole) return false;
  const int next = at + span.frameBytes;
  return next == stream.size ||
         read(stream.data + next, stream.size - next).state != FrameSpan::kNoFrame;
}

// Calls `take` with each confirmed frame, in order.
template <typename Read, typename Take>
void ForEachFrame(const Stream& stream, const Read& read, const Take& take) {
  for (int at = 0; at < stream.size;) {
    const FrameSpan span = read(stream.data + at, stream.size - at);
    if (IsConfirmed(stream, at, span, read)) {
      take(stream.data + at, span);
      at += span.frameBytes;
    } else {
      ++at;
    }
  }
}

void Append(Bytes& bytes, const unsigned char* data, int count) {
  bytes.insert(bytes.end(), data, data + count);
}

// The first frame decides how the others are read.
struct Kind {
  bool adts = false;
  const CodecVariant* variant = nullptr;
};

Kind KindOf(const Stream& stream) {
  for (int at = 0; at < stream.size; ++at) {
    const unsigned char* data = stream.data + at;
    const int left = stream.size - at;
    if (IsConfirmed(stream, at, desktop::ReadAnyAdts(data, left), desktop::ReadAnyAdts)) {
      return {true, nullptr};
    }
    const CodecVariant* variant = desktop::FindVariant(desktop::RawIdAt(data, left));
    if (variant == nullptr || variant->framing != desktop::Framing::kTwoByteHeader) continue;
    const desktop::FrameHeader header({variant, 0, 0});
    const auto read = [&](const unsigned char* d, int size) { return header.Read(d, size); };
    if (IsConfirmed(stream, at, read(data, left), read)) return {false, variant};
  }
  return {};
}

// Whether two ADTS headers tell the same profile, rate and channels.
bool IsAlike(const unsigned char* one, const unsigned char* other) {
  return ((one[2] ^ other[2]) & 0xfd) == 0 && ((one[3] ^ other[3]) & 0xc0) == 0;
}

Bytes Copy(const Stream& stream) {
  Bytes out;
  ForEachFrame(stream, desktop::ReadAnyAdts, [&](const unsigned char* data, const FrameSpan& span) {
    if (out.empty() || IsAlike(out.data(), data)) Append(out, data, span.frameBytes);
  });
  return out;
}

Bytes Reframe(const Stream& stream, const CodecSetup& setup) {
  CodecVariant adts = *setup.variant;
  adts.framing = desktop::Framing::kAdts;
  const desktop::FrameHeader target({&adts, setup.rate, setup.channels});
  const desktop::FrameHeader source(setup);
  Bytes out;
  ForEachFrame(
      stream, [&](const unsigned char* data, int size) { return source.Read(data, size); },
      [&](const unsigned char* data, const FrameSpan& span) {
        unsigned char header[desktop::kMaxHeaderBytes];
        target.Write(header, span.packetBytes);
        Append(out, header, target.bytes());
        Append(out, data + span.packetOffset, span.packetBytes);
      });
  return out;
}

// Codes samples as they come as LC, and what the encoder still holds at the end.
class LcWriter {
 public:
  LcWriter(int rate, int channels)
      : m_variant({-1, kAudioCodecUnknown, Coder::kAacLc, 0, 2 * rate * channels,
                   desktop::Framing::kAdts}),
        m_encoder(desktop::FrameEncoder::Create({&m_variant, rate, channels})),
        m_frameSamples(static_cast<size_t>(kLcFrame) * static_cast<size_t>(channels)) {}

  bool IsOpen() const { return m_encoder != nullptr; }

  void Add(const short* samples, int count) {
    m_samples.insert(m_samples.end(), samples, samples + count);
    size_t at = 0;
    for (; at + m_frameSamples <= m_samples.size(); at += m_frameSamples) Encode(&m_samples[at]);
    m_samples.erase(m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(at));
  }

  Bytes Finish() {
    if (m_frames == 0 && m_samples.empty()) return {};
    const std::vector<short> silence(m_frameSamples);
    if (!m_samples.empty()) {
      m_samples.resize(m_frameSamples);
      Encode(m_samples.data());
    }
    for (int late = 0; late < kLcLookAhead; late += kLcFrame) Encode(silence.data());
    return std::move(m_out);
  }

 private:
  // The first packet is of the time before the first sample: without it the result is one frame
  // less late.
  void Encode(const short* frame) {
    unsigned char packet[desktop::kMaxFrameBytes];
    const int bytes = m_encoder->Encode(frame, packet);
    if (m_frames++ > 0) Append(m_out, packet, bytes);
  }

  const CodecVariant m_variant;
  const std::unique_ptr<desktop::FrameEncoder> m_encoder;
  const size_t m_frameSamples;
  std::vector<short> m_samples;  // Less than a frame between calls.
  int m_frames = 0;
  Bytes m_out;
};

Bytes Recode(const Stream& stream, const CodecSetup& setup) {
  const auto decoder = desktop::FrameDecoder::Create(setup);
  LcWriter writer(setup.rate, setup.channels);
  if (decoder == nullptr || !writer.IsOpen()) return {};
  ForEachFrame(
      stream, [&](const unsigned char* data, int size) { return decoder->Find(data, size); },
      [&](const unsigned char* data, const FrameSpan& span) {
        short samples[desktop::kMaxFrameSamples];
        if (decoder->Decode(data, span, samples)) writer.Add(samples, decoder->samplesPerFrame());
      });
  return writer.Finish();
}

Bytes Convert(const Stream& stream) {
  const Kind kind = KindOf(stream);
  if (kind.adts) return Copy(stream);
  if (kind.variant == nullptr) return {};
  // Id 50 goes on at the rate at which everyone decodes it.
  const int id = kind.variant->rawId == 50 ? 51 : kind.variant->rawId;
  const AudioStreamFormat format = FormatFromRawCodecId(id);
  const CodecSetup setup = {desktop::FindVariant(id), format.iSampleRate, format.iNumOfChannels};
  return setup.variant->coder == Coder::kAacLc ? Reframe(stream, setup) : Recode(stream, setup);
}

}  // namespace

int TransZUStreamToAAC(const char* data, int size, unsigned char** out) {
  *out = nullptr;
  if (data == nullptr || size <= 0) return 0;
  const Bytes aac = Convert({reinterpret_cast<const unsigned char*>(data), size});
  if (aac.empty()) {
    OutputDebugInfo("stream to AAC: no frame that could be converted");
    return 0;
  }
  *out = static_cast<unsigned char*>(malloc(aac.size()));
  if (*out == nullptr) return 0;
  memcpy(*out, aac.data(), aac.size());
  return static_cast<int>(aac.size());
}
