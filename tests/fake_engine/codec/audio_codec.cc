#include "fake_engine/codec/audio_codec.h"

#include <set>

#include "fake_engine/fake_engine.h"

namespace {

class FakeCodec;

// Keeps codecs that nobody deletes from looking lost.
std::set<const FakeCodec*>& Alive() {
  static auto* const codecs = new std::set<const FakeCodec*>;
  return *codecs;
}

AudioCodecScript& Script() { return FakeEngine::Current().script<AudioCodecScript>(); }

// What a test does not use answers as an object that was never initialised.
class FakeCodec : public CAudioCodec {
 public:
  FakeCodec() { Alive().insert(this); }

  ~FakeCodec() override {
    Alive().erase(this);
    FakeEngine::Current().Died(this);
  }

  void SetNumber(int number) { m_number = number; }

  bool Init(AudioStreamFormat* format) override {
    Script().onInit(*format);
    const bool answer = FakeEngine::Current().Answer(Script().initAnswer, false);
    FakeEngine::Current().Call(this, "Init(id %d, %d Hz x %d, %d) = %d", format->iRawCodecId,
                               format->iSampleRate, format->iNumOfChannels, format->iSamplesOfFrame,
                               answer);
    return answer;
  }

  void Process(const unsigned char* in, int inLen, unsigned char* out, int* outLen) override {
    const std::string given(reinterpret_cast<const char*>(in), static_cast<size_t>(inLen));
    const std::string made =
        FakeEngine::Current().Fails() ? std::string() : Script().process(m_number, given);
    RequireOrDie(made.size() <= static_cast<size_t>(*outLen), "output within the caller's room");
    FakeEngine::Current().Call(this, "Process(%d, room %d) = %zu", inLen, *outLen, made.size());
    made.copy(reinterpret_cast<char*>(out), made.size());
    *outLen = static_cast<int>(made.size());
  }

  int GetEncoderSize() override {
    const bool none = FakeEngine::Current().HasNone();
    const int size =
        Script().encoderSize && !none ? *Script().encoderSize : CAudioCodec::GetEncoderSize();
    FakeEngine::Current().Call(this, "GetEncoderSize() = %d", size);
    return size;
  }

  void CalcBufSize(int* bytes, int) override { *bytes = 0; }
  int GetAncData(char**, int*, int) override { return 0; }
  AudioLibraryCodecMode CodecMode() override { return kAudioLibraryDecoder; }
  ZUAudioCodec CodecID() override { return kAudioCodecUnknown; }
  int CodecLevel() override { return 0; }
  void DeInit() override {}
  const char* CodecDescribe() override { return ""; }
  bool IsAvailable() override { return false; }
  int CodecDelay() override { return 0; }
  int GetDecodedSampleRate() override { return 0; }
  int GetDecodedChannel() override { return 0; }

 private:
  int m_number = 0;
};

}  // namespace

CAudioCodec* CreateAudioCodec(ZUAudioCodec family, AudioLibraryCodecMode mode) {
  FakeEngine& engine = FakeEngine::Current();
  FakeCodec* codec = nullptr;
  const bool none = engine.HasNone();
  if (!none && Script().isAvailable(family, mode)) codec = new FakeCodec;
  std::string name = "null";
  if (codec != nullptr) {
    name = engine.Identify(codec, "CAudioCodec");
    codec->SetNumber(std::stoi(name.substr(name.find('#') + 1)));
  }
  engine.Record("CreateAudioCodec(%d, %d) = %s", static_cast<int>(family), static_cast<int>(mode),
                name.c_str());
  return codec;
}
