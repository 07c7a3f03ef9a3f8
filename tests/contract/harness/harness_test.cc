// The small helpers that routines are written with.

#include <gmock/gmock.h>

#include <iterator>
#include <string>
#include <vector>

#include "fake_engine/fake_engine.h"
#include "harness/block_samples.h"
#include "harness/copy_wav_header.h"
#include "harness/fill_frame.h"
#include "harness/format_name.h"
#include "harness/noizeus_cases.h"
#include "harness/read_block.h"
#include "support/transcript.h"

using harness::BlockSamples;
using harness::CopyWavHeader;
using harness::FillFrame;
using harness::FormatName;
using harness::kNoizeusLevels;
using harness::kNoizeusNoises;
using harness::kNoizeusSentences;
using harness::ReadBlock;
using harness::StdioFile;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(StdioFile, ClosesWhenItGoesOutOfScope) {
  FakeEngine engine;
  {
    StdioFile file("out.pcm", "wb");
    EXPECT_EQ(file.Write("abcdef", 2, 3), 3U);
  }
  EXPECT_EQ(engine.Bytes("out.pcm"), "abcdef");
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(out.pcm, wb)
      fwrite(out.pcm, 2, 3)
      fclose(out.pcm)
  )"));
}

TEST(StdioFile, ClosesOnce) {
  FakeEngine engine;
  {
    StdioFile file("out.pcm", "wb");
    file.Close();
    file.Close();
  }
  EXPECT_THAT(engine.CallsWith("fclose"), ElementsAre("fclose(out.pcm)"));
}

TEST(StdioFile, ReadsWholeItemsAndSeeks) {
  FakeEngine engine;
  engine.PutFile("in.pcm", "abcdefg");
  StdioFile file("in.pcm", "rb");
  char items[7] = {};

  EXPECT_EQ(file.Read(items, 3, 2), 2U);
  EXPECT_STREQ(items, "abcdef");
  file.Seek(1, SEEK_SET);
  EXPECT_EQ(file.Read(items, 1, 2), 2U);

  EXPECT_STREQ(items, "bccdef");
  EXPECT_THAT(engine.CallsWith("fseek"), ElementsAre("fseek(in.pcm, 1, 0)"));
}

TEST(StdioFile, DoesNothingWhenItIsNotOpen) {
  FakeEngine engine;
  StdioFile file("absent.pcm", "rb");
  char item = 'x';

  EXPECT_EQ(file.get(), nullptr);
  EXPECT_EQ(file.Read(&item, 1, 1), 0U);
  EXPECT_EQ(file.Write(&item, 1, 1), 0U);
  file.Seek(0, SEEK_SET);
  file.Close();

  EXPECT_EQ(item, 'x');
  EXPECT_THAT(engine.calls, Transcript("fopen(absent.pcm, rb) = null"));
}

TEST(StdioFile, LeavesAFileOpenOnRequest) {
  FakeEngine engine;
  FILE* stream = nullptr;
  {
    StdioFile file("out.pcm", "wb");
    file.Write("abc", 1, 3);
    stream = file.get();
    file.LeaveOpen();
  }
  EXPECT_THAT(engine.CallsWith("fclose"), IsEmpty());
  EXPECT_EQ(engine.Bytes("out.pcm"), "");  // Still in the stream's buffer.
  fflush(stream);                          // It goes on working, with the buffer that it had.
  EXPECT_EQ(engine.Bytes("out.pcm"), "abc");
}

TEST(ReadBlock, TakesWholeBlocksOfAWave) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {16000, 1, {1, 2, 3, 4, 5}};
  zuwebrtc::WavReader reader("in.wav");
  short block[2] = {};

  EXPECT_TRUE(ReadBlock(reader, block, 2));
  EXPECT_THAT(block, ElementsAre(1, 2));
  EXPECT_TRUE(ReadBlock(reader, block, 2));
  EXPECT_FALSE(ReadBlock(reader, block, 2));
}

TEST(ReadBlock, TakesABlockOfNothingForTheEnd) {
  FakeEngine engine;
  engine.PutFile("in.pcm", "abc");
  zuwebrtc::WavReader reader("absent.wav");
  StdioFile file("in.pcm", "rb");
  short block[1] = {};

  EXPECT_FALSE(ReadBlock(reader, block, 0));
  EXPECT_FALSE(ReadBlock(file, block, 0));
}

TEST(ReadBlock, TakesABlockBeyondItsArrayForTheEnd) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {768000, 64, std::vector<short>(100, 1)};
  zuwebrtc::WavReader reader("in.wav");
  short block[4] = {};

  EXPECT_FALSE(ReadBlock(reader, block, 5));

  EXPECT_THAT(engine.CallsWith("ReadSamples"), IsEmpty());
  EXPECT_TRUE(ReadBlock(reader, block, 4));
}

TEST(ReadBlock, TakesWholeBlocksOfAHeaderlessFile) {
  FakeEngine engine;
  engine.PutFile("in.pcm", "abcde");
  StdioFile file("in.pcm", "rb");
  char block[3] = {};

  EXPECT_TRUE(ReadBlock(file, block, 3));
  EXPECT_THAT(block, ElementsAre('a', 'b', 'c'));
  EXPECT_FALSE(ReadBlock(file, block, 3));
  EXPECT_THAT(engine.CallsWith("fread"), Transcript(R"(
      fread(in.pcm, 3, 1) = 1
      fread(in.pcm, 3, 1) = 0
  )"));
}

TEST(BlockSamples, TruncatesTheProductNotTheFactors) {
  EXPECT_EQ(BlockSamples(16000, 1, 10), 160U);
  EXPECT_EQ(BlockSamples(44100, 2, 10), 882U);
  EXPECT_EQ(BlockSamples(22050, 2, 10), 441U);  // 220.5 a channel.
  EXPECT_EQ(BlockSamples(11025, 1, 10), 110U);
  EXPECT_EQ(BlockSamples(0, 0, 10), 0U);
  EXPECT_EQ(BlockSamples(192000, 8, 10000), 15360000U);  // Beyond 32 bits on the way.
}

TEST(FormatName, FormatsNamesOfAnyLength) {
  EXPECT_EQ(FormatName("sp%02d_%s_sn%d.pcm", 3, "car", 15), "sp03_car_sn15.pcm");
  const std::string longName(5000, 'x');
  EXPECT_EQ(FormatName("%s.wav", longName.c_str()), longName + ".wav");
  EXPECT_EQ(FormatName("%s", ""), "");
}

TEST(FillFrame, ResetsTheFrameAndCopiesTheSamples) {
  zuwebrtc::AudioFrame frame;
  frame.id_ = 5;
  frame.timestamp_ = 6;
  frame.elapsed_time_ms_ = 7;
  frame.ntp_time_ms_ = 8;
  frame.data_[4] = 9;
  frame.speech_type_ = zuwebrtc::kCNG;
  frame.vad_activity_ = zuwebrtc::kVadActive;
  frame.energy_ = 10;
  frame.interleaved_ = false;
  const short samples[] = {1, -2, 3, -4};

  FillFrame(frame, samples, 4, 48000, 2);

  EXPECT_EQ(frame.id_, -1);
  EXPECT_EQ(frame.timestamp_, 0U);
  EXPECT_EQ(frame.elapsed_time_ms_, -1);
  EXPECT_EQ(frame.ntp_time_ms_, -1);
  EXPECT_EQ(std::vector<short>(frame.data_, frame.data_ + 5),
            (std::vector<short>{1, -2, 3, -4, 0}));
  EXPECT_EQ(frame.samples_per_channel_, 2);
  EXPECT_EQ(frame.sample_rate_hz_, 48000);
  EXPECT_EQ(frame.num_channels_, 2);
  EXPECT_EQ(frame.speech_type_, 4);
  EXPECT_EQ(frame.vad_activity_, 2);
  EXPECT_EQ(frame.energy_, 0xffffffffU);
  EXPECT_TRUE(frame.interleaved_);
}

TEST(FillFrame, KeepsToTheCapacityOfTheFrame) {
  const std::vector<short> samples(6000, 1);
  zuwebrtc::AudioFrame frame;

  FillFrame(frame, samples.data(), 6000, 48000, 2);
  EXPECT_EQ(frame.samples_per_channel_, 2646);
  EXPECT_THAT(frame.data_, Each(1));

  FillFrame(frame, samples.data(), -1, 0, 0);
  EXPECT_EQ(frame.samples_per_channel_, 0);
  EXPECT_THAT(frame.data_, Each(0));
}

TEST(CopyWavHeader, CopiesFortyFourBytesUnchanged) {
  FakeEngine engine;
  std::string bytes;
  for (int i = 0; i < 50; ++i) bytes.push_back(static_cast<char>(i * 5));
  engine.PutFile("in.wav", bytes);
  StdioFile in("in.wav", "rb");
  StdioFile out("out.wav", "wb");

  CopyWavHeader(in, out);
  out.Close();

  EXPECT_EQ(engine.Bytes("out.wav"), bytes.substr(0, 44));
  char next = 0;
  in.Read(&next, 1, 1);
  EXPECT_EQ(next, bytes[44]);
}

TEST(CopyWavHeader, CopiesWhatThereIsOfAShortFile) {
  FakeEngine engine;
  engine.PutFile("in.wav", "RIFF");
  StdioFile in("in.wav", "rb");
  StdioFile out("out.wav", "wb");

  CopyWavHeader(in, out);
  out.Close();

  EXPECT_EQ(engine.Bytes("out.wav"), "RIFF");
}

TEST(NoizeusCases, NameTheCorpusInTheOrderOfTheBatches) {
  const std::vector<std::string> noises(std::begin(kNoizeusNoises), std::end(kNoizeusNoises));
  EXPECT_THAT(noises, ElementsAre("airport", "babble", "car", "exhibition", "restaurant", "station",
                                  "street", "train"));
  EXPECT_THAT(kNoizeusLevels, ElementsAre(0, 5, 10, 15));
  EXPECT_EQ(kNoizeusSentences, 30);
}
