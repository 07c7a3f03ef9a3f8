#include "harness/pcm_readers.h"

#include <gmock/gmock.h>

#include "fake_engine/fake_engine.h"
#include "harness/stdio_file.h"
#include "support/transcript.h"

using harness::StdioFile;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A buffer full of a value that no test signal has.
zuwebrtc::ChannelBuffer<float> FilledBuffer(int frames, int channels) {
  zuwebrtc::ChannelBuffer<float> buffer(frames, channels);
  std::fill_n(buffer.data_.get(), frames * channels, 99.0F);
  return buffer;
}

std::vector<float> Channel(const zuwebrtc::ChannelBuffer<float>& buffer, int channel) {
  const float* samples = buffer.channels_[static_cast<size_t>(channel)];
  return std::vector<float>(samples, samples + buffer.num_frames_);
}

}  // namespace

TEST(ReadChunk, DeinterleavesInTheEnginesScaling) {
  FakeEngine engine;
  engine.PutSamples("in.pcm", {2, -4, 6, -8, 10, -12});
  StdioFile file("in.pcm", "rb");
  auto buffer = FilledBuffer(3, 2);
  short interleaved[6];
  float interleavedFloat[6];

  EXPECT_TRUE(ReadChunk(file.get(), interleaved, interleavedFloat, &buffer));

  EXPECT_THAT(Channel(buffer, 0), ElementsAre(1.0F, 3.0F, 5.0F));
  EXPECT_THAT(Channel(buffer, 1), ElementsAre(-2.0F, -4.0F, -6.0F));
  EXPECT_THAT(interleaved, ElementsAre(2, -4, 6, -8, 10, -12));
  EXPECT_THAT(interleavedFloat, ElementsAre(1, -2, 3, -4, 5, -6));
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(in.pcm, rb)
      fread(in.pcm, 2, 6) = 6
      S16ToFloat(6)
  )"));
}

TEST(ReadChunk, MixesDownIntoABufferOfOneChannel) {
  FakeEngine engine;
  engine.PutSamples("in.pcm", {2, 4, 6, 10});
  StdioFile file("in.pcm", "rb");
  auto buffer = FilledBuffer(2, 1);
  short interleaved[4];
  float interleavedFloat[4];

  EXPECT_TRUE(ReadChunk(file.get(), interleaved, interleavedFloat, &buffer));

  EXPECT_THAT(Channel(buffer, 0), ElementsAre(-1.0F, -2.0F));  // The fake's way of mixing.
  EXPECT_THAT(engine.CallsWith("MixStereoToMono"), ElementsAre("MixStereoToMono(2)"));
}

TEST(ReadChunk, FillsTwoChannelsOfMore) {
  FakeEngine engine;
  engine.PutSamples("in.pcm", {2, 4});
  StdioFile file("in.pcm", "rb");
  auto buffer = FilledBuffer(1, 3);
  short interleaved[2];
  float interleavedFloat[2];

  EXPECT_TRUE(ReadChunk(file.get(), interleaved, interleavedFloat, &buffer));

  EXPECT_THAT(Channel(buffer, 0), ElementsAre(1.0F));
  EXPECT_THAT(Channel(buffer, 1), ElementsAre(2.0F));
  EXPECT_THAT(Channel(buffer, 2), ElementsAre(99.0F));
}

TEST(ReadChunk, ReadsTheChunkAfterAShortRead) {
  FakeEngine engine;
  engine.PutSamples("in.pcm", {2, 4, 6});
  StdioFile file("in.pcm", "rb");
  auto buffer = FilledBuffer(2, 2);
  short interleaved[4];
  float interleavedFloat[4];
  EXPECT_FALSE(ReadChunk(file.get(), interleaved, interleavedFloat, &buffer));
  file.Seek(0, SEEK_SET);
  auto whole = FilledBuffer(1, 2);

  EXPECT_TRUE(ReadChunk(file.get(), interleaved, interleavedFloat, &whole));

  EXPECT_THAT(Channel(whole, 0), ElementsAre(1.0F));
  EXPECT_THAT(Channel(whole, 1), ElementsAre(2.0F));
}

TEST(ReadChunk, DropsAPartialChunkAndLeavesTheBuffer) {
  FakeEngine engine;
  engine.PutSamples("in.pcm", {1, 2, 3, 4, 5});
  StdioFile file("in.pcm", "rb");
  auto buffer = FilledBuffer(3, 2);
  short interleaved[6];
  float interleavedFloat[6] = {7, 7, 7, 7, 7, 7};

  EXPECT_FALSE(ReadChunk(file.get(), interleaved, interleavedFloat, &buffer));

  EXPECT_THAT(Channel(buffer, 0), Each(99.0F));
  EXPECT_THAT(Channel(buffer, 1), Each(99.0F));
  EXPECT_THAT(interleavedFloat, Each(7.0F));
  EXPECT_THAT(engine.CallsWith("S16ToFloat"), IsEmpty());
}

TEST(ReadChunk, FindsNothingInAStreamThatIsNotOpen) {
  FakeEngine engine;
  auto buffer = FilledBuffer(3, 2);
  short interleaved[6];
  float interleavedFloat[6];

  EXPECT_FALSE(ReadChunk(nullptr, interleaved, interleavedFloat, &buffer));

  EXPECT_THAT(Channel(buffer, 0), Each(99.0F));
}

TEST(ReadPCMFromFileToMix, AppendsTheBlockItselfNotACopy) {
  FakeEngine engine;
  engine.PutFile("in.pcm", "abcdefgh");
  StdioFile file("in.pcm", "rb");
  std::string block(4, ' ');
  std::vector<std::string*> blocks;

  ReadPCMFromFileToMix(file.get(), block, blocks);
  EXPECT_EQ(block, "abcd");
  ReadPCMFromFileToMix(file.get(), block, blocks);

  EXPECT_EQ(block, "efgh");
  EXPECT_THAT(blocks, ElementsAre(&block, &block));
  EXPECT_THAT(engine.CallsWith("fread"), Transcript(R"(
      fread(in.pcm, 4, 1) = 1
      fread(in.pcm, 4, 1) = 1
  )"));
}

TEST(ReadPCMFromFileToMix, NeverHandsOnAPartialBlock) {
  FakeEngine engine;
  engine.PutFile("in.pcm", "abc");
  StdioFile file("in.pcm", "rb");
  std::string block(4, ' ');
  std::string other = "other";
  std::vector<std::string*> blocks = {&other};

  ReadPCMFromFileToMix(file.get(), block, blocks);

  EXPECT_THAT(blocks, ElementsAre(&other));
  EXPECT_EQ(block.size(), 4U);
}

TEST(ReadPCMFromFileToMix, FindsNothingInAStreamThatIsNotOpen) {
  std::string block(4, ' ');
  std::vector<std::string*> blocks;

  ReadPCMFromFileToMix(nullptr, block, blocks);

  EXPECT_THAT(blocks, IsEmpty());
  EXPECT_EQ(block, "    ");
}

TEST(ReadPCMFromFileToMix, TakesABlockOfNothingForTheEnd) {
  FakeEngine engine;
  engine.PutFile("in.pcm", "abc");
  StdioFile file("in.pcm", "rb");
  std::string block;
  std::vector<std::string*> blocks;

  ReadPCMFromFileToMix(file.get(), block, blocks);

  EXPECT_THAT(blocks, IsEmpty());
}
