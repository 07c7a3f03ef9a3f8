#include "catalogue/codec_needs.h"

#include <memory>

#include "bench/codec/codec_family.h"
#include "engine_api/codec/audio_codec.h"
#include "engine_api/codec/codec_format.h"

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

const char* FamilyName(ZUAudioCodec family) {
  switch (family) {
    case kAudioCodecSilk:
      return "Silk";
    case kAudioCodecAAC:
      return "HE-AAC";
    case kAudioCodecAACHIGH:
      return "AAC LC";
    case kAudioCodecOPUS:
      return "Opus";
    case kAudioCodecEldAAC:
      return "AAC-ELD";
    case kAudioCodecAACUni:
      return "HE-AAC v2";
    default:
      return "";
  }
}

}  // namespace

std::vector<CodecId> CodecIds() {
  constexpr int kMostId = 255;
  std::vector<CodecId> ids;
  for (int id = 0; id <= kMostId; ++id) {
    const ZUAudioCodec family = bench::CodecFamily(id);
    if (family == kAudioCodecUnknown) continue;
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const bool adts = family == kAudioCodecAAC || family == kAudioCodecAACUni;
    ids.push_back({.id = id,
                   .codec = FamilyName(family),
                   .rate = format.iSampleRate,
                   .channels = format.iNumOfChannels,
                   .bitRate = format.iBitRate,
                   .header = adts ? "ADTS, 7 bytes" : "2 bytes",
                   .lacking = LackingRawId(id)});
  }
  return ids;
}

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
