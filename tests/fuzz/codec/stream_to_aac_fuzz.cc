// TransZUStreamToAAC on bytes of any kind.

#include "engine_api/codec/stream_to_aac.h"
#include "fuzz/codec/stream_fuzz_seeds.h"
#include "fuzz/fuzz_target.h"

extern const int kIterations = 2000;

std::vector<std::string> Seeds() { return PlainStreams(); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  unsigned char* out = nullptr;
  const int bytes =
      TransZUStreamToAAC(reinterpret_cast<const char*>(data), static_cast<int>(size), &out);
  REQUIRE((bytes > 0) == (out != nullptr));
  // The shortest frame is of 4 bytes; a frame of any codec makes at most two of AAC.
  REQUIRE(static_cast<size_t>(bytes) <= (size / 4 + 3) * 2 * 1029);
  if (bytes > 0) {
    REQUIRE(out[0] == 0xff && (out[1] & 0xf0) == 0xf0);
  }
  free(out);
  return 0;
}
