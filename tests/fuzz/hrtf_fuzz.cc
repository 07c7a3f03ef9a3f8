// Recordings of any length and content through the selected test.

#include <filesystem>

#include "bench/effects/routines.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"

extern const int kIterations = 2000;

std::vector<std::string> Seeds() {
  std::vector<std::string> seeds = {""};
  for (const size_t bytes : {1U, 1763U, 1764U, 1765U, 3528U, 10000U}) {
    seeds.push_back(std::string(bytes, '\x7f'));
  }
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::filesystem::create_directories("sdcard/ZUAudioDemo");
  WriteFile("sdcard/ZUAudioDemo/44100_2.pcm", std::string(data, data + size));
  TestHRTF();
  const size_t written = std::filesystem::file_size("sdcard/ZUAudioDemo/44100_2_out_902.pcm");
  REQUIRE(written == size / 1764 * 3528);
  return 0;
}
