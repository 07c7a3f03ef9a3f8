#include "engine_api/common/wav_reader.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using zuwebrtc::WavReader;

// All samples that are left.
std::vector<short> ReadAll(WavReader& reader) {
  std::vector<short> samples(reader.num_samples() + 10);
  samples.resize(reader.ReadSamples(static_cast<unsigned>(samples.size()), samples.data()));
  return samples;
}

class WavReaderTest : public testing::Test {
 protected:
  // Expects a mono file at 16 kHz with these samples and nothing in the log.
  static void ExpectReads(const std::string& bytes, const std::vector<short>& samples) {
    WriteFile("in.wav", bytes);
    const CapturedStderr log;
    WavReader reader("in.wav");
    EXPECT_THAT(log.Lines(), IsEmpty());
    EXPECT_EQ(reader.sample_rate(), 16000);
    EXPECT_EQ(reader.num_channels(), 1);
    EXPECT_EQ(reader.num_samples(), samples.size());
    EXPECT_EQ(ReadAll(reader), samples);
  }

  const std::string kFormat = PlainFormat({});
  const std::string kData = Chunk("data", SampleBytes({1, -2, 3}));
  TemporaryDirectory m_directory;
};

TEST_F(WavReaderTest, ReadsInPiecesUpToTheEnd) {
  WriteFile("in.wav", WavBytes({.channels = 2, .rate = 44100}, {1, -32768, 32767, 4, 5, 6}));
  WavReader reader("in.wav");
  EXPECT_EQ(reader.sample_rate(), 44100);
  EXPECT_EQ(reader.num_channels(), 2);
  EXPECT_EQ(reader.num_samples(), 6U);

  short block[4] = {};
  EXPECT_EQ(reader.ReadSamples(0, block), 0U);
  EXPECT_EQ(reader.ReadSamples(4, block), 4U);
  EXPECT_THAT(block, ElementsAre(1, -32768, 32767, 4));
  EXPECT_EQ(reader.ReadSamples(4, block), 2U);
  EXPECT_THAT(block, ElementsAre(5, 6, 32767, 4));
  EXPECT_EQ(reader.ReadSamples(4, block), 0U);
  EXPECT_EQ(reader.num_samples(), 6U);
}

TEST_F(WavReaderTest, KeepsTheSixteenBitRangeInFloats) {
  std::vector<short> samples(3000);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<short>(i * 22 - 32768);
  WriteFile("in.wav", WavBytes({}, samples));
  WavReader reader("in.wav");
  std::vector<float> floats(4000, -1.0F);
  EXPECT_EQ(reader.ReadSamples(2500, floats.data()), 2500U);
  EXPECT_EQ(reader.ReadSamples(1500, floats.data() + 2500), 500U);
  EXPECT_EQ(std::vector<float>(floats.begin(), floats.begin() + 3000),
            std::vector<float>(samples.begin(), samples.end()));
  EXPECT_EQ(floats[3000], -1.0F);
}

TEST_F(WavReaderTest, PassesOverOtherChunks) {
  const std::string list = Chunk("LIST", std::string("INFOISFT\4\0\0\0abc", 15));
  const std::string fact = Chunk("fact", std::string("\3\0\0\0", 4));
  ExpectReads(Riff(list + kFormat + kData), {1, -2, 3});
  ExpectReads(Riff(kFormat + fact + list + kData), {1, -2, 3});
  ExpectReads(Riff(kFormat + kData + list), {1, -2, 3});
  ExpectReads(Riff(Chunk("junk", "") + kFormat + kData), {1, -2, 3});
}

TEST_F(WavReaderTest, PassesOverThePadByteOfOddChunks) {
  ExpectReads(Riff(Chunk("junk", "a") + kFormat + Chunk("junk", "abc") + kData), {1, -2, 3});
}

TEST_F(WavReaderTest, ReadsTheLongerFormatChunks) {
  ExpectReads(Riff(ExtensibleFormat({}, 1) + kData), {1, -2, 3});
  const std::string format = kFormat.substr(8) + std::string(2, '\0');
  ExpectReads(Riff(Chunk("fmt ", format) + kData), {1, -2, 3});
  ExpectReads(Riff(Chunk("fmt ", format + std::string(101, 'x')) + kData), {1, -2, 3});
}

TEST_F(WavReaderTest, ReadsToTheEndOfTheFileWhenTheLengthGoesBeyond) {
  const std::string samples = SampleBytes({1, -2, 3});
  for (const uint32_t announced : {7U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
    ExpectReads(Riff(kFormat + Chunk("data", samples, announced)), {1, -2, 3});
  }
}

TEST_F(WavReaderTest, ReadsToTheEndOfTheFileWhenNeitherLengthWasFilledIn) {
  const std::string chunks = kFormat + Chunk("data", SampleBytes({1, -2, 3}), 0);
  ExpectReads(Chunk("RIFF", "WAVE" + chunks, 0), {1, -2, 3});
  ExpectReads(Chunk("RIFF", "WAVE" + chunks, 36), {});
}

TEST_F(WavReaderTest, StopsAtTheAnnouncedLength) {
  ExpectReads(Riff(kFormat + Chunk("data", SampleBytes({1, -2, 3}), 4)), {1, -2});
}

TEST_F(WavReaderTest, DropsAPartOfASample) {
  ExpectReads(Riff(kFormat + Chunk("data", SampleBytes({1, -2}) + "x")), {1, -2});
}

TEST_F(WavReaderTest, CountsThePartOfAFileThatIsThere) {
  const std::string whole = WavBytes({}, {1, -2, 3});
  for (size_t length = 44; length < whole.size(); ++length) {
    const std::vector<short> all = {1, -2, 3};
    ExpectReads(whole.substr(0, length),
                {all.begin(), all.begin() + static_cast<long>(length - 44) / 2});
  }
}

TEST_F(WavReaderTest, EndsWhereTheFileIsCutWhileItIsRead) {
  WriteFile("in.wav", WavBytes({}, std::vector<short>(100000, 7)));
  WavReader reader("in.wav");
  std::vector<short> block(50000);
  EXPECT_EQ(reader.ReadSamples(10, block.data()), 10U);
  ASSERT_EQ(truncate("in.wav", 44 + 2 * 20000 + 1), 0);
  EXPECT_EQ(reader.ReadSamples(50000, block.data()), 20000U - 10);
  EXPECT_EQ(reader.ReadSamples(50000, block.data()), 0U);
}

TEST_F(WavReaderTest, FindsSamplesBehindAVeryLongChunk) {
  const uint32_t junkBytes = 0xFFFFFFFE;
  const std::string head = "RIFF" + std::string(4, '\0') + "WAVE" + kFormat;
  WriteFile("in.wav", head + Chunk("junk", "", junkBytes));
  const auto end = static_cast<off_t>(head.size()) + 8 + off_t{junkBytes};
  ASSERT_EQ(truncate("in.wav", end), 0);  // A hole, which takes no room on the disk.
  FILE* file = fopen("in.wav", "ab");
  fwrite(kData.data(), 1, kData.size(), file);
  fclose(file);

  WavReader reader("in.wav");
  EXPECT_THAT(ReadAll(reader), ElementsAre(1, -2, 3));
}

TEST_F(WavReaderTest, CountsTheSamplesOfVeryLongFiles) {
  const auto samplesOf = [&](uint32_t announced, off_t fileBytes) {
    WriteFile("in.wav", Riff(kFormat + Chunk("data", "", announced)));
    EXPECT_EQ(truncate("in.wav", fileBytes), 0);
    return WavReader("in.wav").num_samples();
  };
  EXPECT_EQ(samplesOf(0xFFFFFFFE, 44 + (off_t{5} << 30)), 0x7FFFFFFFU);
  EXPECT_EQ(samplesOf(0xFFFFFFFF, 44 + (off_t{5} << 30)), 5U << 29);
  EXPECT_EQ(samplesOf(0xFFFFFFFF, 44 + (off_t{9} << 30)), 0xFFFFFFFFU);
}

struct Unreadable {
  std::string why;
  std::string bytes;
};

class WavReaderFaultTest : public testing::TestWithParam<Unreadable> {
 protected:
  TemporaryDirectory m_directory;
};

// One line in the log that says why, and a file of nothing.
void ExpectNothing(const std::string& name, const std::string& why = "") {
  const CapturedStderr log;
  WavReader reader(name);
  EXPECT_THAT(log.Lines(), ElementsAre(AllOf(HasSubstr(name), EndsWith(why))));
  EXPECT_EQ(reader.sample_rate(), 0);
  EXPECT_EQ(reader.num_channels(), 0);
  EXPECT_EQ(reader.num_samples(), 0U);
  short sample = 5;
  float value = 5;
  EXPECT_EQ(reader.ReadSamples(1, &sample), 0U);
  EXPECT_EQ(reader.ReadSamples(1, &value), 0U);
  EXPECT_EQ(sample, 5);
  EXPECT_EQ(value, 5.0F);
  EXPECT_THAT(log.Lines(), SizeIs(1));
}

TEST_P(WavReaderFaultTest, ReadsAsNothing) {
  WriteFile("in.wav", GetParam().bytes);
  ExpectNothing("in.wav");
}

std::vector<Unreadable> Faults() {
  const std::string format = PlainFormat({});
  const std::string data = Chunk("data", SampleBytes({1, 2}));
  const auto with = [&](const WavFormat& other) { return Riff(PlainFormat(other) + data); };
  std::string thousandChunks;
  for (int i = 0; i < 1000; ++i) thousandChunks += Chunk("junk", "");
  std::vector<Unreadable> faults = {
      {"Empty", ""},
      {"Text", std::string(100, 'x')},
      {"OtherRiff", Chunk("RIFF", "AVI " + format + data)},
      {"BigEndianRiff", Chunk("RIFX", "WAVE" + format + data)},
      {"DataBeforeFormat", Riff(data + format)},
      {"NoFormat", Riff(data)},
      {"NoData", Riff(format)},
      {"ShortFormat", Riff(Chunk("fmt ", format.substr(8, 14)) + data)},
      {"FormatBeyondTheEnd", Riff(Chunk("fmt ", format.substr(8, 14), 0xFFFFFFFF))},
      {"ChunkBeyondTheEnd", Riff(Chunk("junk", "", 0xFFFFFFFF) + format + data)},
      {"ChunkBeyondTheEndOfFourGiB", Riff(Chunk("junk", "", 0xFFFFFFFE) + format + data)},
      {"ChunkBeyondTheEndOfTwoGiB", Riff(Chunk("junk", "", 0x80000000) + format + data)},
      {"TooManyChunks", Riff(thousandChunks + format + data)},
      {"EightBitsInSixteen", with({.bits = 8, .blockAlign = 2})},
      {"TwentyFourBitsInSixteen", with({.bits = 24, .blockAlign = 2})},
      {"EightBits", with({.bits = 8})},
      {"TwentyFourBits", with({.bits = 24})},
      {"ThirtyTwoBits", with({.bits = 32})},
      {"Float", with({.tag = 3, .bits = 32})},
      {"FloatTagWithSixteenBits", with({.tag = 3})},
      {"ALaw", with({.tag = 6, .bits = 8})},
      {"ExtensibleFloat", Riff(ExtensibleFormat({}, 3) + data)},
      {"ExtensibleOfEightBits", Riff(ExtensibleFormat({.bits = 8}, 1) + data)},
      {"ExtensibleWithoutExtension", with({.tag = 0xFFFE})},
      {"NoChannels", with({.channels = 0})},
      {"TooManyChannels", with({.channels = 65})},
      {"AllOnesChannels", with({.channels = 65535})},
      {"NoRate", with({.rate = 0})},
      {"TooHighARate", with({.rate = 768001})},
      {"NegativeRate", with({.rate = 0xFFFFFFFF})},
      {"BlockAlignTooSmall", with({.channels = 2, .blockAlign = 2})},
      {"BlockAlignTooLarge", with({.blockAlign = 4})},
      {"NoBlockAlign", with({.blockAlign = 0})},
  };
  const std::string whole = WavBytes({}, {1, 2});
  for (size_t length = 1; length < 44; ++length) {
    faults.push_back({"First" + std::to_string(length) + "Bytes", whole.substr(0, length)});
  }
  return faults;
}

INSTANTIATE_TEST_SUITE_P(Faults, WavReaderFaultTest, testing::ValuesIn(Faults()),
                         [](const auto& info) { return info.param.why; });

TEST_F(WavReaderTest, ReadsAMissingFileAsNothing) {
  ExpectNothing("missing.wav", "No such file or directory");
}

TEST_F(WavReaderTest, ReadsADirectoryAsNothing) {
  mkdir("directory.wav", 0700);
  ExpectNothing("directory.wav", "not a regular file");
}

TEST_F(WavReaderTest, ReadsAPipeAsNothingAndDoesNotWaitForIt) {
  ASSERT_EQ(mkfifo("pipe.wav", 0600), 0);
  ExpectNothing("pipe.wav");
}

TEST_F(WavReaderTest, ReadsADeviceAsNothing) { ExpectNothing("/dev/zero", "not a regular file"); }

TEST_F(WavReaderTest, TakesTheHighestRateAndChannelCount) {
  WriteFile("in.wav", WavBytes({.channels = 64, .rate = 768000}, {1, 2}));
  const WavReader reader("in.wav");
  EXPECT_EQ(reader.sample_rate(), 768000);
  EXPECT_EQ(reader.num_channels(), 64);
}

}  // namespace
