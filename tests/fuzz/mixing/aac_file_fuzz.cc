// AAC files as they come from broken cards.

#include "desktop/files/aac_file.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/mixing/adts_seeds.h"
#include "fuzz/mixing/sources.h"
#include "support/file_bytes.h"

extern const int kIterations = 2000;

std::vector<std::string> Seeds() { return AdtsStreams(); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  WriteFile("fuzz.aac", std::string(data, data + size));
  std::unique_ptr<desktop::FileSource> source;
  const desktop::FileFault fault =
      desktop::OpenAacFile(desktop::File(fopen("fuzz.aac", "rb")), &source);
  REQUIRE((fault == desktop::FileFault::kNone) == (source != nullptr));
  if (source == nullptr) return 0;
  REQUIRE(source->Channels() <= 2);
  // As long as it says, whichever frames are damaged. The shortest frame is of 8 bytes.
  REQUIRE(source->Frames() <= size / 8 * 2048);
  REQUIRE(ReadTwice(*source, UINT64_MAX, true) == source->Frames());
  return 0;
}
