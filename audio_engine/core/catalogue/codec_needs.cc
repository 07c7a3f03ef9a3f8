#include "catalogue/codec_needs.h"

#include <memory>

#include "bench/codec/codec_family.h"
#include "engine_api/codec/audio_codec.h"

namespace harness {

namespace {

bool HasFamily(ZUAudioCodec family) {
  const std::unique_ptr<CAudioCodec> encoder(CreateAudioCodec(family, kAudioLibraryEncoder));
  const std::unique_ptr<CAudioCodec> decoder(CreateAudioCodec(family, kAudioLibraryDecoder));
  return encoder != nullptr && decoder != nullptr;
}

bool HasType(AudioLocalCodec::AudioCodecType type) {
  AudioLocalCodec::IAudioEncoder* encoder = AudioLocalCodec::CreateAudioEncoder(type);
  AudioLocalCodec::IAudioDecoder* decoder = AudioLocalCodec::CreateAudioDecoder(type);
  if (encoder != nullptr) encoder->Destroy();
  if (decoder != nullptr) decoder->Destroy();
  return encoder != nullptr && decoder != nullptr;
}

}  // namespace

std::string LackingFamily(ZUAudioCodec family) {
  if (HasFamily(family)) return "";
  return "this engine has no codec of family " + std::to_string(static_cast<int>(family)) +
         ": it was built without that codec's library";
}

std::string LackingRawId(int codecId) {
  const ZUAudioCodec family = bench::CodecFamily(codecId);
  if (family == kAudioCodecUnknown || HasFamily(family)) return "";
  return "this engine has no codec for raw id " + std::to_string(codecId) +
         ": it was built without that codec's library";
}

std::string UnknownRawId(ArgumentWords words, size_t index) {
  Argument<int> codecId;
  if (!codecId.Parse(words[index]) || bench::CodecFamily(codecId.Value()) != kAudioCodecUnknown)
    return "";
  return "argument " + std::to_string(index + 1) + " of " + std::to_string(words.size()) +
         " is the id of no codec: " + std::string(words[index]);
}

std::string LackingType(AudioLocalCodec::AudioCodecType type) {
  if (HasType(type)) return "";
  return "this engine has no local codec of type " + std::to_string(static_cast<int>(type));
}

}  // namespace harness
