// CAudioCodec::Process of every raw id and both directions on packets and samples of any kind. The
// first byte chooses the codec, then come blocks, each a 16-bit length and its bytes.

#include <algorithm>
#include <memory>

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/codec_format.h"
#include "fuzz/fuzz_target.h"

extern const int kIterations = 2000;

namespace {

std::string Block(const std::string& bytes) {
  const size_t length = bytes.size();
  return std::string{static_cast<char>(length & 0xff), static_cast<char>(length >> 8)} + bytes;
}

// One call; what comes out must fit the room and be whole frames.
void Call(CAudioCodec& codec, const uint8_t* data, size_t size, bool decoder) {
  const std::vector<uint8_t> in(data, data + size);
  const int room = size % 3 == 0 ? static_cast<int>(size) : 20480;
  std::vector<uint8_t> out(static_cast<size_t>(room));
  int bytes = room;
  codec.Process(in.data(), static_cast<int>(in.size()), out.data(), &bytes);
  REQUIRE(bytes >= 0 && bytes <= room);
  const int unit = decoder ? 2 * codec.GetDecodedChannel() : 1;
  REQUIRE(bytes % unit == 0);
}

}  // namespace

std::vector<std::string> Seeds() {
  std::vector<std::string> seeds;
  const std::vector<CodecId>& ids = CodecIds();
  for (size_t i = 0; i < ids.size(); ++i) {
    const AudioStreamFormat format = FormatFromRawCodecId(ids[i].rawId);
    const Samples voice = Voice(format.iSampleRate, format.iNumOfChannels, 0.2);
    const int frame = format.iSamplesOfFrame * format.iNumOfChannels;
    std::string packets(1, static_cast<char>(2 * i));
    const auto encoder = OpenCodec(ids[i].rawId, kAudioLibraryEncoder);
    for (const std::string& packet : Encode(*encoder, voice, frame)) packets += Block(packet);
    seeds.push_back(packets);
    seeds.push_back(static_cast<char>(2 * i + 1) + Block(BytesOf(voice).substr(0, 20000)));
  }
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const CodecId& id = CodecIds()[data[0] / 2 % CodecIds().size()];
  const bool decoder = data[0] % 2 == 0;
  const auto codec = OpenCodec(id.rawId, decoder ? kAudioLibraryDecoder : kAudioLibraryEncoder);
  REQUIRE(codec != nullptr);
  for (size_t at = 1; at + 2 <= size;) {
    const size_t length = data[at] | static_cast<size_t>(data[at + 1]) << 8;
    at += 2;
    const size_t bytes = std::min(length, size - at);
    Call(*codec, data + at, bytes, decoder);
    at += bytes;
  }
  return 0;
}
