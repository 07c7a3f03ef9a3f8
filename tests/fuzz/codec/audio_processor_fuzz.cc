// AudioProcessor from any format to any other, on bytes of any kind, cut anywhere, with any room.
// The first bytes choose both formats, the bytes of a call and the room.

#include <algorithm>

#include "engine_api/codec/audio_processor.h"
#include "engine_api/codec/codec_format.h"
#include "fuzz/codec/stream_fuzz_seeds.h"
#include "fuzz/fuzz_target.h"

extern const int kIterations = 2000;

namespace {

constexpr int kRawIds[] = {-1, 0,  1,  2,  3,  21, 22, 23, 35, 36, 37, 38, 39, 40,
                           41, 42, 43, 44, 45, 46, 50, 51, 52, 53, 54, 55, 7};

AudioStreamFormat FormatOf(uint8_t byte) {
  return FormatFromRawCodecId(kRawIds[byte % std::size(kRawIds)]);
}

}  // namespace

std::vector<std::string> Seeds() {
  std::vector<std::string> seeds;
  for (const std::string& stream : PlainStreams()) {
    // From the id that the stream is of, as far as that is told in it, to samples and to Silk.
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(stream[i]); };
    const int id = byte(0) == 0xff && byte(1) == 0xf1 ? 1 : byte(2);
    const auto place = std::find(std::begin(kRawIds), std::end(kRawIds), id);
    const char in = static_cast<char>(place - std::begin(kRawIds));
    seeds.push_back(std::string{in, '\0', '\x40', '\x40'} + stream);
    seeds.push_back(std::string{in, '\3', '\xff', '\xff'} + stream);
    seeds.push_back(std::string{'\0', in, '\x40', '\xff'} + stream);
  }
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(FormatOf(data[0]), FormatOf(data[1]), processor);
  REQUIRE(processor != nullptr);
  const size_t count = 1 + data[2] * 8U;
  const uint32_t room = data[3] * 64U;
  for (size_t at = 4; at < size; at += count) {
    const std::vector<uint8_t> in(data + at, data + std::min(size, at + count));
    std::vector<uint8_t> out(room);
    auto inLen = static_cast<uint32_t>(in.size());
    uint32_t outLen = room;
    processor->ProcessData(in.data(), &inLen, out.data(), &outLen, 0, 0);
    REQUIRE(outLen <= room);
    REQUIRE(inLen == in.size());
  }
  AudioProcessor::Release(processor);
  REQUIRE(processor == nullptr);
  return 0;
}
