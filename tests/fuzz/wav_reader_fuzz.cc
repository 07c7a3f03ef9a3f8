// WAVE files as they come from broken cards.

#include <algorithm>

#include "engine_api/common/wav_reader.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"
#include "support/wav_bytes.h"

extern const int kIterations = 20000;

std::vector<std::string> Seeds() {
  const std::string data = Chunk("data", SampleBytes(std::vector<short>(20, 5)));
  const std::string list = Chunk("LIST", "INFOISFT\4");
  const std::string stereo = PlainFormat({.channels = 2, .rate = 44100});
  return {Riff(stereo + data), Riff(list + PlainFormat({}) + list + data),
          Riff(ExtensibleFormat({.rate = 48000}, 1) + Chunk("fact", "abcd") + data),
          Riff(PlainFormat({.bits = 8}) + data),
          Riff(PlainFormat({}) + Chunk("data", "", 0xFFFFFFFF)) + SampleBytes({1, 2, 3})};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  WriteFile("fuzz.wav", std::string(data, data + size));
  zuwebrtc::WavReader reader("fuzz.wav");
  const size_t samples = reader.num_samples();
  REQUIRE(samples <= size / 2);
  REQUIRE((reader.sample_rate() > 0) == (reader.num_channels() > 0));
  REQUIRE(reader.sample_rate() > 0 || samples == 0);

  // Blocks of both kinds in turn, each in memory of its own size.
  size_t total = 0;
  for (unsigned length = 1;; length = length * 3 % 97 + 1) {
    std::vector<short> block(length);
    std::vector<float> floats(length);
    const unsigned got = total % 2 == 0 ? reader.ReadSamples(length, block.data())
                                        : reader.ReadSamples(length, floats.data());
    REQUIRE(got == std::min<size_t>(length, samples - total));
    total += got;
    if (got < length) break;
  }
  REQUIRE(total == samples);
  return 0;
}
