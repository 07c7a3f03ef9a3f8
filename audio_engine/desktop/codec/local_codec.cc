#include "engine_api/codec/local_codec.h"

#include <cstring>
#include <memory>
#include <optional>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/lost_block.h"
#include "desktop/codec/parts/packet_codec.h"
#include "desktop/common/counts.h"
#include "engine_api/codec/codec_format.h"

namespace AudioLocalCodec {

namespace {

using desktop::CodecSetup;
using desktop::CodecVariant;
using desktop::Coder;
using desktop::Count;
using desktop::Framing;
using desktop::Size;

// Payloads of one length, which a reader of the file needs no header for.
constexpr CodecVariant kSpeexVariants[] = {
    {0, kAudioCodecUnknown, Coder::kSpeex, 8, 15200, Framing::kBare},
    {21, kAudioCodecUnknown, Coder::kSpeex, 4, 8000, Framing::kBare},
    {23, kAudioCodecUnknown, Coder::kSpeex, 2, 5950, Framing::kBare}};

constexpr size_t kPcmFrames = 882;  // 20 ms.
constexpr int kPcmRate = 44100;
constexpr int kPcmChannels = 2;

// How a type is coded: samples as they are when `variant` is null.
struct TypeSetup {
  CodecSetup codec;

  // The length of a block, all channels.
  size_t samples;
};

TypeSetup WithVariant(const CodecVariant* variant) {
  const AudioStreamFormat format = FormatFromRawCodecId(variant->rawId);
  return {{variant, format.iSampleRate, format.iNumOfChannels},
          Size(format.iSamplesOfFrame * format.iNumOfChannels)};
}

std::optional<TypeSetup> SetupOf(AudioCodecType type) {
  const CodecVariant* variant = nullptr;
  switch (type) {
    case SPEEX_CODEC_8:
      variant = &kSpeexVariants[0];
      break;
    case SPEEX_CODEC_4:
      variant = &kSpeexVariants[1];
      break;
    case SPEEX_CODEC_2:
      variant = &kSpeexVariants[2];
      break;
    case AAC_PLUS_CODEC:
    case SILK_CODEC:
    case AAC_LC_CODEC:
    case AAC_AUDIT_CODEC:
      variant = desktop::FindVariant(type);
      break;
    case AAC_ELD_CODEC:
      variant = desktop::FindVariant(38);
      break;
    case WAV_CODEC:
      return TypeSetup{{nullptr, kPcmRate, kPcmChannels}, kPcmFrames * kPcmChannels};
    default:
      return std::nullopt;
  }
  if (!desktop::IsBuiltIn(variant->coder)) return std::nullopt;
  return WithVariant(variant);
}

// Fills `out` with the bytes of `count` samples, or of anything else.
template <typename T>
void Assign(std::string& out, const T* from, size_t count) {
  out.assign(reinterpret_cast<const char*>(from), count * sizeof(T));
}

// What an encoder and a decoder hold, from Init to Uninit.
template <typename PacketCoder>
class Core {
 public:
  explicit Core(const TypeSetup& setup) : m_setup(setup) {}

  bool Open() {
    Close();
    if (m_setup.codec.variant != nullptr) {
      m_coder = PacketCoder::Create(m_setup.codec, &m_log);
      if (m_coder == nullptr) return false;
    }
    m_loss.emplace(m_setup.samples, Size(m_setup.codec.channels));
    return true;
  }

  void Close() {
    m_coder.reset();
    m_loss.reset();
  }

  void Restart() {
    if (m_loss) Open();
  }

  bool IsOpen() const { return m_loss.has_value(); }
  PacketCoder* coder() { return m_coder.get(); }  // Null for samples as they are.
  desktop::LostBlock& loss() { return *m_loss; }
  size_t samples() const { return m_setup.samples; }
  size_t bytes() const { return m_setup.samples * sizeof(short); }

 private:
  const TypeSetup m_setup;
  desktop::LogOnce m_log;
  std::unique_ptr<PacketCoder> m_coder;
  std::optional<desktop::LostBlock> m_loss;
};

class Encoder final : public IAudioEncoder {
 public:
  explicit Encoder(const TypeSetup& setup) : m_core(setup) {}

  void Destroy() override { delete this; }
  int GetEncoderBytes() override { return Count(m_core.bytes()); }
  bool Init() override { return m_core.Open(); }
  void Uninit() override { m_core.Close(); }
  void Flush() override { m_core.Restart(); }

  void Encode(const char* in, int len, std::string& out) override {
    out.clear();
    if (!m_core.IsOpen() || in == nullptr || len <= 0 || Size(len) > m_core.bytes()) return;
    short block[desktop::kMaxBlockSamples] = {};
    memcpy(block, in, Size(len));
    m_core.loss().Arrived(block);
    EncodeBlock(block, out);
  }

  void EncodeLoss(std::string& out) override {
    out.clear();
    if (m_core.IsOpen()) EncodeBlock(m_core.loss().Lost(), out);
  }

  bool SetBitRate(int bitRate) override {
    return m_core.coder() != nullptr && m_core.coder()->SetBitRate(bitRate);
  }

  bool SetComplexity(int complexity) override {
    if (!m_core.IsOpen() || complexity < 0 || complexity > 10) return false;
    return m_core.coder() == nullptr || m_core.coder()->SetComplexity(complexity);
  }

 private:
  ~Encoder() override = default;

  void EncodeBlock(const short* block, std::string& out) {
    if (m_core.coder() == nullptr) return Assign(out, block, m_core.samples());
    unsigned char packet[desktop::kMaxPacketBytes];
    Assign(out, packet, m_core.coder()->Encode(block, packet));
  }

  Core<desktop::PacketEncoder> m_core;
};

class Decoder final : public IAudioDecoder {
 public:
  explicit Decoder(const TypeSetup& setup) : m_core(setup) {}

  void Destroy() override { delete this; }
  bool Init() override { return m_core.Open(); }
  void Uninit() override { m_core.Close(); }
  void Flush() override { m_core.Restart(); }

  void Decode(const char* in, int len, std::string& out) override {
    out.clear();
    if (!m_core.IsOpen() || in == nullptr || len <= 0) return;
    short block[desktop::kMaxBlockSamples];
    const bool decoded = m_core.coder() == nullptr ? TakeSamples(in, Size(len), block)
                                                   : DecodePacket(in, Size(len), block);
    if (decoded) Assign(out, block, m_core.samples());
  }

  void DecodeLoss(std::string& out) override {
    out.clear();
    if (!m_core.IsOpen()) return;
    if (m_core.coder() == nullptr) return Assign(out, m_core.loss().Lost(), m_core.samples());
    short block[desktop::kMaxBlockSamples];
    m_core.coder()->Conceal(block);
    Assign(out, block, m_core.samples());
  }

 private:
  ~Decoder() override = default;

  // Takes one whole block.
  bool TakeSamples(const char* in, size_t len, short* block) {
    if (len != m_core.bytes()) return false;
    memcpy(block, in, len);
    m_core.loss().Arrived(block);
    return true;
  }

  // Takes one packet and nothing else.
  bool DecodePacket(const char* in, size_t len, short* block) {
    const auto* data = reinterpret_cast<const unsigned char*>(in);
    desktop::PacketSpan span;
    if (len <= desktop::kMaxPacketBytes) span = m_core.coder()->Find(data, len);
    if (span.state == desktop::PacketSpan::kWhole && span.packetBytes == len) {
      return m_core.coder()->Decode(data, span, block);
    }
    m_core.coder()->Refuse();
    return false;
  }

  Core<desktop::PacketDecoder> m_core;
};

}  // namespace

IAudioEncoder* CreateAudioEncoder(AudioCodecType type) {
  const std::optional<TypeSetup> setup = SetupOf(type);
  return setup ? new Encoder(*setup) : nullptr;
}

IAudioDecoder* CreateAudioDecoder(AudioCodecType type) {
  const std::optional<TypeSetup> setup = SetupOf(type);
  return setup ? new Decoder(*setup) : nullptr;
}

}  // namespace AudioLocalCodec
