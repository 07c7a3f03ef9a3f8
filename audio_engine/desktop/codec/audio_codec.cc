#include "engine_api/codec/audio_codec.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/create_payload_codec.h"
#include "desktop/codec/parts/packet_codec.h"
#include "desktop/common/counts.h"
#include "desktop/platform/log.h"
#include "engine_api/codec/codec_format.h"

namespace {

using desktop::CodecSetup;
using desktop::Count;
using desktop::kMaxPacketBytes;
using desktop::PacketDecoder;
using desktop::PacketEncoder;
using desktop::PacketSpan;
using desktop::Size;

// What encoders and decoders have in common.
class DesktopCodec : public CAudioCodec {
 public:
  DesktopCodec(ZUAudioCodec family, AudioLibraryCodecMode mode) : m_family(family), m_mode(mode) {}

  bool Init(AudioStreamFormat* format) override {
    DeInit();
    const desktop::CodecVariant* variant =
        format == nullptr ? nullptr : desktop::FindVariant(format->iRawCodecId);
    if (variant != nullptr && variant->family == m_family) {
      const CodecSetup setup = {variant, format->iSampleRate, format->iNumOfChannels};
      if (Open(setup)) {
        m_setup = setup;
        return true;
      }
    }
    if (m_log.IsFirst()) desktop::LogRefusal("%s codec: no such format", CodecDescribe());
    return false;
  }

  int GetAncData(char** /*data*/, int* /*sizes*/, int /*count*/) override { return 0; }
  AudioLibraryCodecMode CodecMode() override { return m_mode; }
  ZUAudioCodec CodecID() override { return m_family; }

  int CodecLevel() override { return m_setup ? FormatFromRawCodecId(RawId()).iQuality : 0; }

  void DeInit() override {
    Close();
    m_setup.reset();
  }

  const char* CodecDescribe() override {
    switch (m_family) {
      case kAudioCodecSilk:
        return "Silk";
      case kAudioCodecOPUS:
        return "Opus";
      case kAudioCodecEldAAC:
        return "AAC ELD";
      case kAudioCodecAACHIGH:
        return "AAC LC";
      default:
        return "AAC HE";
    }
  }

  bool IsAvailable() override { return m_setup.has_value(); }

  int CodecDelay() override {
    return m_setup ? desktop::PayloadCodecLag(*m_setup, BlockFrames()) : 0;
  }

  int GetDecodedSampleRate() override { return m_setup ? m_setup->rate : 0; }
  int GetDecodedChannel() override { return m_setup ? m_setup->channels : 0; }

 protected:
  // The length of a block in samples of all channels, and in frames; 0 before Init.
  virtual size_t BlockSamples() const = 0;
  virtual size_t BlockFrames() const = 0;

  size_t BlockBytes() const { return BlockSamples() * sizeof(short); }
  int RawId() const { return m_setup ? m_setup->variant->rawId : -1; }

  desktop::LogOnce m_log;

 private:
  virtual bool Open(const CodecSetup& setup) = 0;
  virtual void Close() = 0;

  const ZUAudioCodec m_family;
  const AudioLibraryCodecMode m_mode;
  std::optional<CodecSetup> m_setup;
};

class Encoder : public DesktopCodec {
 public:
  explicit Encoder(ZUAudioCodec family) : DesktopCodec(family, kAudioLibraryEncoder) {}

  void CalcBufSize(int* bytes, int inLen) override {
    const size_t block = BlockBytes();
    *bytes = block == 0 || inLen < 0 ? 0 : Count((Size(inLen) / block + 1) * kMaxPacketBytes);
  }

  void Process(const unsigned char* in, int inLen, unsigned char* out, int* outLen) override {
    const size_t room = Size(*outLen);
    *outLen = 0;
    if (m_encoder == nullptr || in == nullptr) return;
    size_t given = 0;
    for (size_t left = Size(inLen); left > 0;) {
      const size_t taken = std::min(left, BlockBytes() - m_pendingBytes);
      memcpy(reinterpret_cast<unsigned char*>(m_pending) + m_pendingBytes, in, taken);
      m_pendingBytes += taken;
      in += taken;
      left -= taken;
      if (m_pendingBytes == BlockBytes()) given += EncodePending(out + given, room - given);
    }
    *outLen = Count(given);
  }

  // Deliberate: the low-delay encoders alone tell the length of their block. With an answer from
  // the others a caller that takes 0 as "not known" would change how it reads its file.
  int GetEncoderSize() override {
    return CodecID() == kAudioCodecEldAAC ? Count(BlockBytes()) : CAudioCodec::GetEncoderSize();
  }

 private:
  bool Open(const CodecSetup& setup) override {
    m_encoder = PacketEncoder::Create(setup, &m_log);
    return m_encoder != nullptr;
  }

  void Close() override {
    m_encoder.reset();
    m_pendingBytes = 0;
  }

  size_t BlockSamples() const override {
    return m_encoder == nullptr ? 0 : m_encoder->blockSamples();
  }

  size_t BlockFrames() const override {
    return m_encoder == nullptr ? 0 : m_encoder->blockFrames();
  }

  // Returns the bytes of the packet, which are 0 when there is none.
  size_t EncodePending(unsigned char* out, size_t room) {
    m_pendingBytes = 0;
    unsigned char packet[kMaxPacketBytes];
    const size_t bytes = m_encoder->Encode(m_pending, packet);
    if (bytes > room) {
      m_log("no room for a packet, which is lost", RawId());
      return 0;
    }
    if (bytes > 0) memcpy(out, packet, bytes);
    return bytes;
  }

  std::unique_ptr<PacketEncoder> m_encoder;
  short m_pending[desktop::kMaxBlockSamples];
  size_t m_pendingBytes = 0;
};

class Decoder : public DesktopCodec {
 public:
  explicit Decoder(ZUAudioCodec family) : DesktopCodec(family, kAudioLibraryDecoder) {}

  void CalcBufSize(int* bytes, int inLen) override { *bytes = inLen > 0 ? Count(BlockBytes()) : 0; }

  void Process(const unsigned char* in, int inLen, unsigned char* out, int* outLen) override {
    const size_t room = Size(*outLen);
    *outLen = 0;
    if (m_decoder == nullptr || in == nullptr) return;
    *outLen = Count(DecodePackets(in, Size(inLen), out, room));
  }

 private:
  bool Open(const CodecSetup& setup) override {
    m_decoder = PacketDecoder::Create(setup, &m_log);
    return m_decoder != nullptr;
  }

  void Close() override { m_decoder.reset(); }

  size_t BlockSamples() const override {
    return m_decoder == nullptr ? 0 : m_decoder->blockSamples();
  }

  size_t BlockFrames() const override {
    return m_decoder == nullptr ? 0 : m_decoder->blockFrames();
  }

  // Returns the bytes written, up to the first packet that is not one or finds no room.
  size_t DecodePackets(const unsigned char* in, size_t left, unsigned char* out, size_t room) {
    size_t given = 0;
    while (left > 0) {
      const PacketSpan span = m_decoder->Find(in, left);
      if (span.state != PacketSpan::kWhole) {
        m_decoder->Refuse();
        break;
      }
      if (BlockBytes() > room - given) {
        m_log("no room for a block", RawId());
        break;
      }
      if (m_decoder->Decode(in, span, m_samples)) {
        memcpy(out + given, m_samples, BlockBytes());
        given += BlockBytes();
      }
      in += span.packetBytes;
      left -= span.packetBytes;
    }
    return given;
  }

  std::unique_ptr<PacketDecoder> m_decoder;
  short m_samples[desktop::kMaxBlockSamples];
};

}  // namespace

CAudioCodec* CreateAudioCodec(ZUAudioCodec family, AudioLibraryCodecMode mode) {
  if (!desktop::IsOffered(family)) return nullptr;
  if (mode == kAudioLibraryEncoder) return new Encoder(family);
  return mode == kAudioLibraryDecoder ? new Decoder(family) : nullptr;
}
