#include "desktop/codec/parts/adts_converter.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/malloc_bytes.h"
#include "desktop/codec/parts/packet_codec.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"
#include "engine_api/codec/codec_format.h"

namespace desktop {

namespace {

constexpr size_t kLcBlockFrames = 1024;

// By how many blocks the encoder alone is late.
constexpr int kLcLateBlocks = 2;

struct Stream {
  const unsigned char* data;
  size_t size;
};

// A packet counts when another of its kind follows, or the end: a damaged length, or a mark that
// only looks like one, would lead astray.
template <typename Read>
bool IsConfirmed(const Stream& stream, size_t at, const PacketSpan& span, const Read& read) {
  if (span.state != PacketSpan::kWhole) return false;
  const size_t next = at + span.packetBytes;
  return next == stream.size ||
         read(stream.data + next, stream.size - next).state != PacketSpan::kNoPacket;
}

// Calls `take` with each confirmed packet, in order, as long as it returns true.
template <typename Read, typename Take>
void ForEachPacket(const Stream& stream, const Read& read, const Take& take) {
  for (size_t at = 0; at < stream.size;) {
    const PacketSpan span = read(stream.data + at, stream.size - at);
    if (IsConfirmed(stream, at, span, read)) {
      if (!take(stream.data + at, span)) return;
      at += span.packetBytes;
    } else {
      ++at;
    }
  }
}

// The first packet decides how the others are read.
struct Kind {
  bool adts = false;
  const CodecVariant* variant = nullptr;
};

Kind KindOf(const Stream& stream) {
  for (size_t at = 0; at < stream.size; ++at) {
    const unsigned char* data = stream.data + at;
    const size_t left = stream.size - at;
    if (IsConfirmed(stream, at, ReadAnyAdts(data, left), ReadAnyAdts)) {
      return {true, nullptr};
    }
    const CodecVariant* variant = FindVariant(RawIdAt(data, left));
    if (variant == nullptr || variant->framing != Framing::kTwoByteHeader) continue;
    const PacketHeader header({variant, 0, 0});
    const auto read = [&](const unsigned char* d, size_t size) { return header.Read(d, size); };
    if (IsConfirmed(stream, at, read(data, left), read)) return {false, variant};
  }
  return {};
}

// Returns whether two ADTS headers tell the same profile, rate and channels.
bool IsAlike(const unsigned char* one, const unsigned char* other) {
  return ((one[2] ^ other[2]) & 0xfd) == 0 && ((one[3] ^ other[3]) & 0xc0) == 0;
}

void Copy(const Stream& stream, MallocBytes& out) {
  ForEachPacket(stream, ReadAnyAdts, [&](const unsigned char* data, const PacketSpan& span) {
    if (out.size() > 0 && !IsAlike(out.data(), data)) return true;
    return out.Append(data, span.packetBytes);
  });
}

void ChangeHeaders(const Stream& stream, const CodecSetup& setup, MallocBytes& out) {
  CodecVariant adts = *setup.variant;
  adts.framing = Framing::kAdts;
  const PacketHeader target({&adts, setup.rate, setup.channels});
  const PacketHeader source(setup);
  ForEachPacket(
      stream, [&](const unsigned char* data, size_t size) { return source.Read(data, size); },
      [&](const unsigned char* data, const PacketSpan& span) {
        unsigned char packet[kMaxPacketBytes];
        target.Write(packet, span.payloadBytes);
        std::copy_n(data + span.payloadOffset, span.payloadBytes, packet + target.bytes());
        return out.Append(packet, target.bytes() + span.payloadBytes);
      });
}

// Codes samples as LC as they come, and at the end those that the encoder still holds.
class LcWriter {
 public:
  LcWriter(int rate, int channels, MallocBytes& out)
      : m_variant({-1, kAudioCodecUnknown, Coder::kAacLc, 0, 2 * rate * channels, Framing::kAdts}),
        m_encoder(PacketEncoder::Create({&m_variant, rate, channels})),
        m_blockSamples(kLcBlockFrames * Size(channels)),
        m_out(out) {}

  bool IsOpen() const { return m_encoder != nullptr; }

  // Returns false when a packet found no room; nothing may be added then.
  bool Add(const short* samples, size_t count) {
    m_samples.insert(m_samples.end(), samples, samples + count);
    size_t at = 0;
    for (; at + m_blockSamples <= m_samples.size(); at += m_blockSamples) {
      if (!Encode(&m_samples[at])) return false;
    }
    m_samples.erase(m_samples.begin(), m_samples.begin() + Offset(at));
    return true;
  }

  void Finish() {
    if (m_blocks == 0 && m_samples.empty()) return;
    if (!m_samples.empty()) {
      m_samples.resize(m_blockSamples);
      if (!Encode(m_samples.data())) return;
    }
    const std::vector<short> silence(m_blockSamples);
    for (int late = 0; late < kLcLateBlocks; ++late) {
      if (!Encode(silence.data())) return;
    }
  }

 private:
  // The first packet is of the time before the first sample: without it the result is one block
  // less late.
  bool Encode(const short* block) {
    unsigned char packet[kMaxPacketBytes];
    const size_t bytes = m_encoder->Encode(block, packet);
    return m_blocks++ == 0 || m_out.Append(packet, bytes);
  }

  const CodecVariant m_variant;
  const std::unique_ptr<PacketEncoder> m_encoder;
  const size_t m_blockSamples;
  MallocBytes& m_out;

  // The samples that do not fill a block yet.
  std::vector<short> m_samples;
  int64_t m_blocks = 0;
};

void Recode(const Stream& stream, const CodecSetup& setup, MallocBytes& out) {
  const auto decoder = PacketDecoder::Create(setup);
  LcWriter writer(setup.rate, setup.channels, out);
  if (decoder == nullptr || !writer.IsOpen()) return;
  bool more = true;
  ForEachPacket(
      stream, [&](const unsigned char* data, size_t size) { return decoder->Find(data, size); },
      [&](const unsigned char* data, const PacketSpan& span) {
        short samples[kMaxBlockSamples];
        if (decoder->Decode(data, span, samples)) {
          more = writer.Add(samples, decoder->blockSamples());
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
  if (setup.variant->coder == Coder::kAacLc) return ChangeHeaders(stream, setup, out);
  Recode(stream, setup, out);
}

}  // namespace

int ConvertToAdts(const unsigned char* data, size_t size, size_t maxBytes, unsigned char** out) {
  *out = nullptr;
  if (data == nullptr || size == 0) return 0;
  MallocBytes aac(maxBytes);
  Convert({data, size}, aac);
  if (aac.IsOutOfMemory()) {
    LogRefusal("stream to AAC: no memory for the result");
    return 0;
  }
  if (aac.IsFull()) {
    LogRefusal("stream to AAC: only the packets of the first %zu bytes fit", aac.size());
  } else if (aac.size() == 0) {
    LogRefusal("stream to AAC: no packet that could be converted");
  }
  const int bytes = Count(aac.size());
  *out = aac.Release();
  return bytes;
}

}  // namespace desktop
