// Short-prefixed packets as they come from broken cards, through every local decoder. The first
// byte of an input chooses the decoder.

#include <filesystem>

#include "bench/codec/routines.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"
#include "support/tone.h"

extern const int kIterations = 1500;

namespace {

using namespace AudioLocalCodec;

constexpr AudioCodecType kTypes[] = {SPEEX_CODEC_8, AAC_PLUS_CODEC, SILK_CODEC,
                                     AAC_ELD_CODEC, SPEEX_CODEC_4,  SPEEX_CODEC_2,
                                     AAC_LC_CODEC,  WAV_CODEC,      UNKNOWN_CODEC};

// What the encoder of a type makes of a tone.
std::string Packets(AudioCodecType type) {
  IAudioEncoder* encoder = CreateAudioEncoder(type);
  std::string packets;
  if (encoder == nullptr) return packets;
  encoder->Init();
  const int bytes = encoder->GetEncoderBytes();
  const std::vector<short> tone = Tone(440, 9000, 16000, bytes / 2);
  for (int i = 0; i < 6; ++i) {
    std::string packet;
    encoder->Encode(reinterpret_cast<const char*>(tone.data()), bytes, packet);
    const auto length = static_cast<uint16_t>(packet.size());
    packets.append(reinterpret_cast<const char*>(&length), sizeof length);
    packets += packet;
  }
  encoder->Destroy();
  return packets;
}

}  // namespace

std::vector<std::string> Seeds() {
  std::vector<std::string> seeds = {""};
  for (size_t i = 0; i < std::size(kTypes); ++i) {
    seeds.push_back(std::string(1, static_cast<char>(i)) + Packets(kTypes[i]));
  }
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  WriteFile("fuzz.enc", std::string(data + 1, data + size));
  char in[] = "fuzz.enc";
  char out[] = "fuzz.pcm";
  TestDecodeFile(in, out, kTypes[data[0] % std::size(kTypes)]);
  REQUIRE(std::filesystem::file_size(out) <= size * 40960);
  return 0;
}
