#include "engine_api/codec/audio_codec.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <optional>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/codec/parts/frame_codec.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/platform/log.h"

namespace {

using desktop::CodecSetup;
using desktop::FrameDecoder;
using desktop::FrameEncoder;
using desktop::FrameSpan;
using desktop::kMaxFrameBytes;

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
    if (m_log.IsFirst()) OutputDebugInfo("%s codec: no such format", CodecDescribe());
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
    if (!m_setup) return 0;
    return desktop::PacketCodecLag(*m_setup, SamplesPerFrame() / m_setup->channels);
  }

  int GetDecodedSampleRate() override { return m_setup ? m_setup->rate : 0; }
  int GetDecodedChannel() override { return m_setup ? m_setup->channels : 0; }

 protected:
  // Of all channels; 0 before Init.
  virtual int SamplesPerFrame() const = 0;

  int FrameBytes() const { return SamplesPerFrame() * static_cast<int>(sizeof(short)); }
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
    const int frame = FrameBytes();
    const int64_t room =
        frame == 0 || inLen < 0 ? 0 : (int64_t{inLen} / frame + 1) * kMaxFrameBytes;
    *bytes = static_cast<int>(std::min<int64_t>(room, INT_MAX));
  }

  void Process(const unsigned char* in, int inLen, unsigned char* out, int* outLen) override {
    const int room = *outLen;
    *outLen = 0;
    if (m_encoder == nullptr || in == nullptr) return;
    while (inLen > 0) {
      const int taken = std::min(inLen, FrameBytes() - m_pendingBytes);
      memcpy(reinterpret_cast<unsigned char*>(m_pending) + m_pendingBytes, in,
             static_cast<size_t>(taken));
      m_pendingBytes += taken;
      in += taken;
      inLen -= taken;
      if (m_pendingBytes == FrameBytes()) EncodePending(out, room, outLen);
    }
  }

  // Deliberate: the low-delay encoders alone tell their frame. With an answer from the others a
  // caller that takes 0 as "not known" would change how it reads its file.
  int GetEncoderSize() override {
    return CodecID() == kAudioCodecEldAAC ? FrameBytes() : CAudioCodec::GetEncoderSize();
  }

 private:
  bool Open(const CodecSetup& setup) override {
    m_encoder = FrameEncoder::Create(setup, &m_log);
    return m_encoder != nullptr;
  }

  void Close() override {
    m_encoder.reset();
    m_pendingBytes = 0;
  }

  int SamplesPerFrame() const override {
    return m_encoder == nullptr ? 0 : m_encoder->samplesPerFrame();
  }

  void EncodePending(unsigned char* out, int room, int* outLen) {
    m_pendingBytes = 0;
    unsigned char frame[kMaxFrameBytes];
    const int bytes = m_encoder->Encode(m_pending, frame);
    if (bytes > room - *outLen) {
      m_log("no room for a packet, which is lost", RawId());
      return;
    }
    if (bytes > 0) memcpy(out + *outLen, frame, static_cast<size_t>(bytes));
    *outLen += bytes;
  }

  std::unique_ptr<FrameEncoder> m_encoder;
  short m_pending[desktop::kMaxFrameSamples];
  int m_pendingBytes = 0;
};

class Decoder : public DesktopCodec {
 public:
  explicit Decoder(ZUAudioCodec family) : DesktopCodec(family, kAudioLibraryDecoder) {}

  void CalcBufSize(int* bytes, int inLen) override { *bytes = inLen > 0 ? FrameBytes() : 0; }

  void Process(const unsigned char* in, int inLen, unsigned char* out, int* outLen) override {
    const int room = *outLen;
    *outLen = 0;
    if (m_decoder == nullptr || in == nullptr) return;
    while (inLen > 0) {
      const FrameSpan span = m_decoder->Find(in, inLen);
      if (span.state != FrameSpan::kWhole) return m_decoder->Refuse();
      if (FrameBytes() > room - *outLen) return m_log("no room for a frame", RawId());
      if (m_decoder->Decode(in, span, m_samples)) {
        memcpy(out + *outLen, m_samples, static_cast<size_t>(FrameBytes()));
        *outLen += FrameBytes();
      }
      in += span.frameBytes;
      inLen -= span.frameBytes;
    }
  }

 private:
  bool Open(const CodecSetup& setup) override {
    m_decoder = FrameDecoder::Create(setup, &m_log);
    return m_decoder != nullptr;
  }

  void Close() override { m_decoder.reset(); }

  int SamplesPerFrame() const override {
    return m_decoder == nullptr ? 0 : m_decoder->samplesPerFrame();
  }

  std::unique_ptr<FrameDecoder> m_decoder;
  short m_samples[desktop::kMaxFrameSamples];
};

}  // namespace

CAudioCodec* CreateAudioCodec(ZUAudioCodec family, AudioLibraryCodecMode mode) {
  if (!desktop::IsOffered(family)) return nullptr;
  if (mode == kAudioLibraryEncoder) return new Encoder(family);
  return mode == kAudioLibraryDecoder ? new Decoder(family) : nullptr;
}
