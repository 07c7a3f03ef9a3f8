#include "desktop/codec/parts/stream_reader.h"

#include <gmock/gmock.h>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/parts/codec_table.h"
#include "engine_api/codec/codec_format.h"
#include "support/captured_stderr.h"

namespace desktop {
namespace {

CodecSetup SetupOf(int rawId) {
  const AudioStreamFormat format = FormatFromRawCodecId(rawId);
  return {FindVariant(rawId), format.iSampleRate, format.iNumOfChannels};
}

// The blocks that come of `parts`, each fed once the last has given all.
std::vector<Samples> Read(const CodecSetup& setup, const std::vector<std::string>& parts) {
  LogOnce log;
  const auto reader = StreamReader::Create(setup, &log);
  std::vector<Samples> blocks;
  for (const std::string& part : parts) {
    const std::vector<char> exact(part.begin(), part.end());
    reader->Feed(exact.data(), exact.size());
    const short* block = nullptr;
    while (const size_t samples = reader->Next(&block)) blocks.emplace_back(block, block + samples);
  }
  return blocks;
}

std::vector<std::string> Packets(int rawId) {
  const AudioStreamFormat format = FormatFromRawCodecId(rawId);
  return Encode(*OpenCodec(rawId, kAudioLibraryEncoder),
                Voice(format.iSampleRate, format.iNumOfChannels, 0.5),
                format.iSamplesOfFrame * format.iNumOfChannels);
}

}  // namespace

TEST(StreamReader, GivesNothingBeforeItIsFed) {
  LogOnce log;
  for (const CodecSetup& setup : {SetupOf(2), CodecSetup{nullptr, 8000, 2}}) {
    const auto reader = StreamReader::Create(setup, &log);
    const short* block = nullptr;
    EXPECT_EQ(reader->Next(&block), 0U);
    reader->Feed("1234", 4);
    reader->Feed(nullptr, 0);
    EXPECT_EQ(reader->Next(&block), 0U) << "these bytes are gone";
  }
}

// However many bytes there are of it, and wherever the buffer of 8192 bytes ends.
TEST(StreamReader, FindsThePacketAfterAnyNumberOfOtherBytes) {
  const CapturedStderr log;
  const std::vector<std::string> packets = Packets(2);
  const std::string both = packets[5] + packets[6];
  const std::vector<Samples> expected = Read(SetupOf(2), {both});
  ASSERT_EQ(expected.size(), 2U);
  for (const size_t junk :
       {1U, 2U, 3U, 4U, 5U, 16U, 17U, 8150U, 8189U, 8190U, 8191U, 8192U, 8193U, 16385U}) {
    EXPECT_EQ(Read(SetupOf(2), {std::string(junk, '\x55') + both}), expected) << junk;
    const std::string between = packets[5] + std::string(junk, '\x55') + packets[6];
    EXPECT_EQ(Read(SetupOf(2), {between}), expected) << junk;
  }
}

TEST(StreamReader, WaitsForTheRestOfAPacket) {
  const CapturedStderr log;
  const std::vector<std::string> packets = Packets(2);
  const std::vector<Samples> expected = Read(SetupOf(2), {packets[5] + packets[6]});
  for (size_t at = 0; at <= packets[5].size(); ++at) {
    EXPECT_EQ(Read(SetupOf(2), {packets[5].substr(0, at), packets[5].substr(at) + packets[6]}),
              expected)
        << at;
  }
  EXPECT_EQ(log.Text(), "") << "nothing was lost";
}

TEST(StreamReader, GoesOnAfterADamagedPacket) {
  const CapturedStderr log;
  const std::vector<std::string> packets = Packets(2);
  // Two blocks of Opus, where one is due.
  const std::string damaged("\x05\xfc\x02\x49\0\0\0", 7);
  const std::vector<Samples> blocks = Read(SetupOf(2), {packets[0] + damaged + packets[1]});
  EXPECT_EQ(blocks, Read(SetupOf(2), {packets[0] + packets[1]}));
  EXPECT_THAT(log.Text(), testing::HasSubstr("raw id 2: a damaged packet"));
}

TEST(StreamReader, GivesSamplesInWholeFramesOfAllChannels) {
  const std::string bytes = "0123456789abcdef";
  const std::vector<Samples> blocks =
      Read({nullptr, 8000, 2}, {bytes.substr(0, 5), bytes.substr(5)});
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(BytesOf(blocks[0]), "0123");
  EXPECT_EQ(BytesOf(blocks[1]), "456789abcdef");
}

TEST(StreamReader, GivesBlocksOfAtMost4096Samples) {
  const std::string bytes(20000, 'x');
  size_t samples = 0;
  for (const Samples& block : Read({nullptr, 8000, 1}, {bytes})) {
    EXPECT_LE(block.size(), 4096U);
    samples += block.size();
  }
  EXPECT_EQ(samples, 10000U);
}

TEST(StreamReader, IsNoneForChannelsThatNoBlockHolds) {
  LogOnce log;
  constexpr int kMaxChannels = kMaxBlockSamples;
  for (const int channels : {0, -1, kMaxChannels + 1}) {
    EXPECT_EQ(StreamReader::Create({nullptr, 8000, channels}, &log), nullptr) << channels;
  }
  for (const int channels : {1, kMaxChannels}) {
    EXPECT_NE(StreamReader::Create({nullptr, 8000, channels}, &log), nullptr) << channels;
  }
  EXPECT_EQ(StreamReader::Create({FindVariant(2), 12345, 1}, &log), nullptr);
}

}  // namespace desktop
