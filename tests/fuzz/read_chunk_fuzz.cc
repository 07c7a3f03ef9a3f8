// ReadChunk and ReadPCMFromFileToMix on files and blocks of any length.

#include <algorithm>

#include "engine_api/common/channel_buffer.h"
#include "fuzz/fuzz_target.h"
#include "harness/pcm_readers.h"
#include "support/file_bytes.h"

extern const int kIterations = 10000;

std::vector<std::string> Seeds() {
  return {"", std::string(4, 'a'), std::string(441 * 4, 'b'), std::string(5000, '\x80')};
}

namespace {

// How many chunks there were.
size_t ReadChunks(size_t frames, int channels) {
  zuwebrtc::ChannelBuffer<float> buffer(static_cast<int>(frames), channels);
  std::vector<short> interleaved(2 * frames);
  std::vector<float> floats(2 * frames);
  FILE* file = fopen("fuzz.pcm", "rb");
  size_t chunks = 0;
  while (ReadChunk(file, interleaved.data(), floats.data(), &buffer)) {
    ++chunks;
    for (size_t i = 0; i < frames * static_cast<size_t>(channels); ++i) {
      REQUIRE(buffer.data_[i] >= -1 && buffer.data_[i] < 1);
    }
  }
  fclose(file);
  return chunks;
}

size_t ReadBlocks(size_t bytes) {
  std::string block(bytes, '\0');
  std::vector<std::string*> blocks;
  FILE* file = fopen("fuzz.pcm", "rb");
  size_t before;
  do {
    before = blocks.size();
    ReadPCMFromFileToMix(file, block, blocks);
  } while (blocks.size() > before);
  fclose(file);
  return blocks.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  WriteFile("fuzz.pcm", std::string(data, data + size));
  const size_t length = size > 0 ? data[0] + 1U : 441;
  for (const int channels : {1, 2}) {
    REQUIRE(ReadChunks(length, channels) == size / (4 * length));
  }
  REQUIRE(ReadBlocks(length) == size / length);
  return 0;
}
