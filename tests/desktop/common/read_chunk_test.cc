#include <gmock/gmock.h>

#include "harness/pcm_readers.h"
#include "support/allocation_count.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

TEST(ReadChunk, AllocatesNothing) {
  const TemporaryDirectory directory;
  WriteFile("in.pcm", std::string(20 * 882 * 2, 'x'));
  FILE* const file = fopen("in.pcm", "rb");
  short interleaved[882];
  float interleavedFloat[882];
  zuwebrtc::ChannelBuffer<float> stereo(441, 2);
  zuwebrtc::ChannelBuffer<float> mono(441, 1);
  ASSERT_TRUE(ReadChunk(file, interleaved, interleavedFloat, &stereo));  // Opens the buffer.

  const size_t before = AllocationCount();
  int chunks = 0;
  while (ReadChunk(file, interleaved, interleavedFloat, chunks % 2 == 0 ? &stereo : &mono))
    ++chunks;

  EXPECT_EQ(AllocationCount(), before);
  EXPECT_EQ(chunks, 19);
  fclose(file);
}

}  // namespace
