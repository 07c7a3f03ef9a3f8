// Encoders of local files at half their bit rate; one whose bit rate cannot be set keeps its own.

#include "controls/beneath.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/codec/local_codec.h"
#include "engine_api/common/interface_version.h"

AUDIO_ENGINE_INTERFACE_VERSION;

namespace AudioLocalCodec {

namespace {

// Passes all on to the encoder beneath.
class HalvedEncoder : public IAudioEncoder {
 public:
  HalvedEncoder(IAudioEncoder* beneath, int bitRate) : m_beneath(beneath), m_bitRate(bitRate) {}

  void Destroy() override {
    m_beneath->Destroy();
    delete this;
  }
  int GetEncoderBytes() override { return m_beneath->GetEncoderBytes(); }
  bool Init() override { return m_beneath->Init() && Halve(); }
  void Uninit() override { m_beneath->Uninit(); }

  void Flush() override {
    m_beneath->Flush();
    Halve();
  }

  void Encode(const char* in, int len, std::string& out) override {
    m_beneath->Encode(in, len, out);
  }
  void EncodeLoss(std::string& out) override { m_beneath->EncodeLoss(out); }

  bool SetBitRate(int bitRate) override {
    m_bitRate = bitRate;
    return m_beneath->SetBitRate(bitRate / 2);
  }
  bool SetComplexity(int complexity) override { return m_beneath->SetComplexity(complexity); }

 private:
  bool Halve() {
    if (m_bitRate > 0) m_beneath->SetBitRate(m_bitRate / 2);
    return true;
  }

  IAudioEncoder* m_beneath;
  int m_bitRate;
};

}  // namespace

IAudioEncoder* CreateAudioEncoder(AudioCodecType type) {
  IAudioEncoder* const beneath = controls::Beneath<IAudioEncoder*(AudioCodecType)>(
      "_ZN15AudioLocalCodec18CreateAudioEncoderENS_14AudioCodecTypeE")(type);
  if (beneath == nullptr) return nullptr;
  // Only low-delay AAC has another type here than its raw codec id.
  const int rawId = type == AAC_ELD_CODEC ? 38 : type;
  return new HalvedEncoder(beneath, FormatFromRawCodecId(rawId).iBitRate);
}

IAudioDecoder* CreateAudioDecoder(AudioCodecType type) {
  return controls::Beneath<IAudioDecoder*(AudioCodecType)>(
      "_ZN15AudioLocalCodec18CreateAudioDecoderENS_14AudioCodecTypeE")(type);
}

}  // namespace AudioLocalCodec
