#include "fuzz/mixing/adts_seeds.h"

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/codec_format.h"

namespace {

using std::string_literals::operator""s;

// What the encoder of a raw id makes of a voice.
std::string Stream(int rawId) {
  const auto encoder = OpenCodec(rawId, kAudioLibraryEncoder);
  if (encoder == nullptr) return "";
  const AudioStreamFormat format = FormatFromRawCodecId(rawId);
  const Samples voice = Voice(format.iSampleRate, format.iNumOfChannels, 0.3);
  std::string stream;
  for (const std::string& packet :
       Encode(*encoder, voice, format.iSamplesOfFrame * format.iNumOfChannels)) {
    stream += packet;
  }
  return stream;
}

}  // namespace

std::vector<std::string> AdtsStreams() {
  const std::string frame = "\xFF\xF1\x50\x80\x01\x7F\xFC\x21\x10\x04\x60"s;
  const std::string tag = "ID3\4\0\0\0\0\0\3abc"s;
  std::vector<std::string> streams = {"", frame + frame, tag + frame + "noise" + frame + frame};
  for (const int rawId : {1, 35, 46, 55}) {
    std::string stream = Stream(rawId);
    // Of those that have a header of two bytes instead, nothing is left.
    if (stream.starts_with("\xFF\xF1")) streams.push_back(std::move(stream));
  }
  return streams;
}
