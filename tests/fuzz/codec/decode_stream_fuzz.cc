// Streams of encoded frames as they come from broken cards, through both drivers of decoders, with
// and without length prefixes. The first byte of an input chooses among them.

#include <filesystem>

#include "bench/codec/routines.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

extern const int kIterations = 1500;

namespace {

constexpr int kIds[] = {1, 2, 22, 35, 38, 43, 46, 50, 51, 55};

}  // namespace

// What the encoders make of a tone, for every id and with both layouts.
std::vector<std::string> Seeds() {
  WriteFile("tone.wav", WavBytes({.rate = 44100}, Tone(440, 9000, 44100, 8192)));
  std::vector<std::string> seeds = {""};
  for (size_t i = 0; i < std::size(kIds); ++i) {
    for (const bool prefixed : {false, true}) {
      TestZUEncode("tone.wav", "tone.enc", kIds[i], prefixed);
      std::string seed(1, static_cast<char>(i << 2 | (prefixed ? 2 : 0)));
      seeds.push_back(seed + ReadFile("tone.enc"));
    }
  }
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int id = kIds[(data[0] >> 2) % std::size(kIds)];
  const bool prefixed = (data[0] & 2) != 0;
  WriteFile("fuzz.enc", std::string(data + 1, data + size));
  if ((data[0] & 1) != 0) {
    newTestZUDecode("fuzz.enc", "fuzz.wav", id, 16000, prefixed);
  } else {
    TestZUDecode("fuzz.enc", "fuzz.wav", id, prefixed);
  }
  // At most ten frames of 2048 stereo samples for each two bytes.
  const size_t written = std::filesystem::file_size("fuzz.wav");
  REQUIRE(written >= 44 && written <= 44 + size * 40960);
  return 0;
}
