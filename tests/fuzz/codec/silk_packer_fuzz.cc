// Packer streams as they come from broken cards, through the processor.

#include <cstdio>

#include "bench/codec/routines.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

#if defined(__SANITIZE_ADDRESS__)
#define HAS_LEAK_CHECK 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HAS_LEAK_CHECK 1
#endif
#endif
#ifdef HAS_LEAK_CHECK
#include <sanitizer/lsan_interface.h>
#endif

// Each run leaves two files open, of which a process may have a thousand.
extern const int kIterations = 400;

std::vector<std::string> Seeds() {
  WriteFile("tone.wav", WavBytes({.rate = 16000}, Tone(440, 9000, 16000, 3200)));
  TestZUEncode("tone.wav", "tone.enc", 2, false);
  const std::string stream = ReadFile("tone.enc");
  return {"", stream, stream + stream};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
#ifdef HAS_LEAK_CHECK
  const __lsan::ScopedDisabler leavesProcessorAndFilesOnPurpose;
#endif
  WriteFile("packer.out", std::string(data, data + size));
  TestSilkPackerOut();
  fflush(nullptr);
  // At most one frame of 60 ms for each byte.
  REQUIRE(ReadFile("packer.pcm").size() <= size * 1920);
  return 0;
}
