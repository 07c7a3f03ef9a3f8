// The walk over ADTS frames, against one over the same bytes in memory.

#include <cstring>

#include "desktop/files/adts_reader.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/mixing/adts_seeds.h"
#include "support/file_bytes.h"

extern const int kIterations = 10000;

namespace {

constexpr size_t kHeaderBytes = 7;

// Whether a header is at this place: the sync word with layer 0, and a length that holds more than
// the header itself.
bool IsHeader(const uint8_t* data, size_t size, size_t at, size_t* bytes) {
  if (size - at < kHeaderBytes) return false;
  const uint8_t* const header = data + at;
  *bytes = (header[3] & 3U) * 2048U + header[4] * 8U + header[5] / 32U;
  return header[0] == 0xff && (header[1] & 0xf6) == 0xf0 && *bytes > kHeaderBytes;
}

// The first frame from `at` that another one or the end of the file follows; false for none.
bool Find(const uint8_t* data, size_t size, size_t* at, size_t* bytes) {
  for (; size - *at >= kHeaderBytes; ++*at) {
    if (!IsHeader(data, size, *at, bytes) || *bytes > size - *at) continue;
    const size_t next = *at + *bytes;
    size_t nextBytes = 0;
    if (size - next < kHeaderBytes || IsHeader(data, size, next, &nextBytes)) return true;
  }
  return false;
}

}  // namespace

std::vector<std::string> Seeds() {
  std::vector<std::string> seeds = AdtsStreams();
  // The longest frames, of which the reader holds few at a time.
  const std::string longest = "\xFF\xF1\x50\x83\xFF\xFF\xFC" + std::string(8184, 'l');
  seeds.push_back(longest + longest + longest + "noise" + longest + longest + longest);
  return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  WriteFile("fuzz.aac", std::string(data, data + size));
  FILE* const file = fopen("fuzz.aac", "rb");
  const bool isAdts = desktop::IsAdts(file);
  desktop::AdtsReader reader(file);
  REQUIRE(reader.End() == 0);
  size_t at = 0;
  size_t expected = 0;
  const unsigned char* frame = nullptr;
  while (Find(data, size, &at, &expected)) {
    REQUIRE(at != 0 || isAdts);
    REQUIRE(reader.Next(&frame) == expected);
    REQUIRE(memcmp(frame, data + at, expected) == 0);
    at += expected;
    REQUIRE(reader.End() == at);
  }
  REQUIRE(reader.Next(&frame) == 0);
  REQUIRE(reader.Next(&frame) == 0);
  fclose(file);
  return 0;
}
