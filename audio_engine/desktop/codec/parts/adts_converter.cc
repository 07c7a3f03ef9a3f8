#include "desktop/codec/parts/adts_converter.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/frame_codec.h"
#include "desktop/codec/parts/malloc_bytes.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

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

// Calls `take` with each confirmed frame, in order, as long as it returns true.
template <typename Read, typename Take>
void ForEachFrame(const Stream& stream, const Read& read, const Take& take) {
  for (int at = 0; at < stream.size;) {
    const FrameSpan span = read(stream.data + at, stream.size - at);
    if (IsConfirmed(stream, at, span, read)) {
      if (!take(stream.data + at, span)) return;
      at += span.frameBytes;
    } else {
      ++at;
    }
  }
}

bool Append(MallocBytes& bytes, const unsigned char* data, int count) {
  return bytes.Append(data, static_cast<size_t>(count));
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
    if (IsConfirmed(stream, at, ReadAnyAdts(data, left), ReadAnyAdts)) {
      return {true, nullptr};
    }
    const CodecVariant* variant = FindVariant(RawIdAt(data, left));
    if (variant == nullptr || variant->framing != Framing::kTwoByteHeader) continue;
    const FrameHeader header({variant, 0, 0});
    const auto read = [&](const unsigned char* d, int size) { return header.Read(d, size); };
    if (IsConfirmed(stream, at, read(data, left), read)) return {false, variant};
  }
  return {};
}

// Whether two ADTS headers tell the same profile, rate and channels.
bool IsAlike(const unsigned char* one, const unsigned char* other) {
  return ((one[2] ^ other[2]) & 0xfd) == 0 && ((one[3] ^ other[3]) & 0xc0) == 0;
}

void Copy(const Stream& stream, MallocBytes& out) {
  ForEachFrame(stream, ReadAnyAdts, [&](const unsigned char* data, const FrameSpan& span) {
    if (out.size() > 0 && !IsAlike(out.data(), data)) return true;
    return Append(out, data, span.frameBytes);
  });
}

void Reframe(const Stream& stream, const CodecSetup& setup, MallocBytes& out) {
  CodecVariant adts = *setup.variant;
  adts.framing = Framing::kAdts;
  const FrameHeader target({&adts, setup.rate, setup.channels});
  const FrameHeader source(setup);
  ForEachFrame(
      stream, [&](const unsigned char* data, int size) { return source.Read(data, size); },
      [&](const unsigned char* data, const FrameSpan& span) {
        unsigned char frame[kMaxFrameBytes];
        target.Write(frame, span.packetBytes);
        std::copy_n(data + span.packetOffset, span.packetBytes, frame + target.bytes());
        return Append(out, frame, target.bytes() + span.packetBytes);
      });
}

// Codes samples as they come as LC, and what the encoder still holds at the end.
class LcWriter {
 public:
  LcWriter(int rate, int channels, MallocBytes& out)
      : m_variant({-1, kAudioCodecUnknown, Coder::kAacLc, 0, 2 * rate * channels, Framing::kAdts}),
        m_encoder(FrameEncoder::Create({&m_variant, rate, channels})),
        m_frameSamples(static_cast<size_t>(kLcFrame) * static_cast<size_t>(channels)),
        m_out(out) {}

  bool IsOpen() const { return m_encoder != nullptr; }

  // False when a frame found no place: then nothing more may come.
  bool Add(const short* samples, int count) {
    m_samples.insert(m_samples.end(), samples, samples + count);
    size_t at = 0;
    for (; at + m_frameSamples <= m_samples.size(); at += m_frameSamples) {
      if (!Encode(&m_samples[at])) return false;
    }
    m_samples.erase(m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(at));
    return true;
  }

  void Finish() {
    if (m_frames == 0 && m_samples.empty()) return;
    if (!m_samples.empty()) {
      m_samples.resize(m_frameSamples);
      if (!Encode(m_samples.data())) return;
    }
    const std::vector<short> silence(m_frameSamples);
    for (int late = 0; late < kLcLookAhead; late += kLcFrame) {
      if (!Encode(silence.data())) return;
    }
  }

 private:
  // The first packet is of the time before the first sample: without it the result is one frame
  // less late.
  bool Encode(const short* frame) {
    unsigned char packet[kMaxFrameBytes];
    const int bytes = m_encoder->Encode(frame, packet);
    return m_frames++ == 0 || Append(m_out, packet, bytes);
  }

  const CodecVariant m_variant;
  const std::unique_ptr<FrameEncoder> m_encoder;
  const size_t m_frameSamples;
  MallocBytes& m_out;
  std::vector<short> m_samples;  // Less than a frame between calls.
  int64_t m_frames = 0;
};

void Recode(const Stream& stream, const CodecSetup& setup, MallocBytes& out) {
  const auto decoder = FrameDecoder::Create(setup);
  LcWriter writer(setup.rate, setup.channels, out);
  if (decoder == nullptr || !writer.IsOpen()) return;
  bool more = true;
  ForEachFrame(
      stream, [&](const unsigned char* data, int size) { return decoder->Find(data, size); },
      [&](const unsigned char* data, const FrameSpan& span) {
        short samples[kMaxFrameSamples];
        if (decoder->Decode(data, span, samples)) {
          more = writer.Add(samples, decoder->samplesPerFrame());
        }
        return more;
      });
  if (more) writer.Finish();
}

void Convert(const Stream& stream, MallocBytes& out) {
  const Kind kind = KindOf(stream);
  if (kind.adts) return Copy(stream, out);
  if (kind.variant == nullptr) return;
  // Id 50 goes on at the rate at which everyone decodes it.
  const int id = kind.variant->rawId == 50 ? 51 : kind.variant->rawId;
  const AudioStreamFormat format = FormatFromRawCodecId(id);
  const CodecSetup setup = {FindVariant(id), format.iSampleRate, format.iNumOfChannels};
  if (setup.variant->coder == Coder::kAacLc) return Reframe(stream, setup, out);
  Recode(stream, setup, out);
}

}  // namespace

int ConvertToAdts(const unsigned char* data, int size, size_t most, unsigned char** out) {
  *out = nullptr;
  if (data == nullptr || size <= 0) return 0;
  MallocBytes aac(most);
  Convert({data, size}, aac);
  if (aac.IsOutOfMemory()) {
    OutputDebugInfo("stream to AAC: no memory for the result");
    return 0;
  }
  if (aac.IsFull()) {
    OutputDebugInfo("stream to AAC: only the frames of the first %zu bytes fit", aac.size());
  } else if (aac.size() == 0) {
    OutputDebugInfo("stream to AAC: no frame that could be converted");
  }
  const auto bytes = static_cast<int>(aac.size());
  *out = aac.Release();
  return bytes;
}

}  // namespace desktop
