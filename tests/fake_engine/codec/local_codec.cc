#include "fake_engine/codec/local_codec.h"

#include "fake_engine/fake_engine.h"

namespace {

LocalCodecScript& Script() { return FakeEngine::Current().script<LocalCodecScript>(); }

// Records how much `out` holds when it comes and when it goes.
template <typename Codec>
void Code(Codec* codec, const char* operation,
          const std::function<std::string(const std::string&)>& answer, const char* in, int len,
          std::string& out) {
  const size_t before = out.size();
  const std::string given(in, static_cast<size_t>(len));
  if (!FakeEngine::Current().Fails()) out = answer(given);
  FakeEngine::Current().Call(codec, "%s(%d, out of %zu) = %zu", operation, len, before, out.size());
}

class FakeEncoder : public AudioLocalCodec::IAudioEncoder {
 public:
  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }

  int GetEncoderBytes() override {
    const bool none = FakeEngine::Current().HasNone();
    const int bytes = none ? -1 : Script().encoderBytes;
    FakeEngine::Current().Call(this, "GetEncoderBytes() = %d", bytes);
    return bytes;
  }

  bool Init() override {
    FakeEngine::Current().Call(this, "Init()");
    return !FakeEngine::Current().Fails();
  }

  void Encode(const char* in, int len, std::string& out) override {
    Code(this, "Encode", Script().encode, in, len, out);
  }

  void Uninit() override {}
  void Flush() override {}
  void EncodeLoss(std::string&) override {}
  bool SetBitRate(int) override { return false; }
  bool SetComplexity(int) override { return false; }
};

class FakeDecoder : public AudioLocalCodec::IAudioDecoder {
 public:
  void Destroy() override {
    FakeEngine::Current().Call(this, "Destroy()");
    FakeEngine::Current().Forget(this);
    delete this;
  }

  bool Init() override {
    FakeEngine::Current().Call(this, "Init()");
    return !FakeEngine::Current().Fails();
  }

  void Decode(const char* in, int len, std::string& out) override {
    Code(this, "Decode", Script().decode, in, len, out);
  }

  void Uninit() override {}
  void Flush() override {}
  void DecodeLoss(std::string&) override {}
};

template <typename Codec>
Codec* Create(const char* factory, const char* what, AudioLocalCodec::AudioCodecType type) {
  FakeEngine& engine = FakeEngine::Current();
  Codec* codec = nullptr;
  const bool none = engine.HasNone();
  if (!none && Script().isAvailable(type)) codec = new Codec;
  const std::string name = codec != nullptr ? engine.Identify(codec, what) : "null";
  engine.Record("%s(%d) = %s", factory, static_cast<int>(type), name.c_str());
  return codec;
}

}  // namespace

AudioLocalCodec::IAudioEncoder* AudioLocalCodec::CreateAudioEncoder(AudioCodecType type) {
  return Create<FakeEncoder>("CreateAudioEncoder", "IAudioEncoder", type);
}

AudioLocalCodec::IAudioDecoder* AudioLocalCodec::CreateAudioDecoder(AudioCodecType type) {
  return Create<FakeDecoder>("CreateAudioDecoder", "IAudioDecoder", type);
}
