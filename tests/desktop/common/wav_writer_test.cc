#include "engine_api/common/wav_writer.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "engine_api/common/wav_reader.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using zuwebrtc::WavReader;
using zuwebrtc::WavWriter;

// The samples after the canonical header.
std::vector<short> SamplesOf(const std::string& name) {
  WavReader reader(name);
  std::vector<short> samples(reader.num_samples());
  reader.ReadSamples(reader.num_samples(), samples.data());
  return samples;
}

class WavWriterTest : public testing::Test {
 protected:
  TemporaryDirectory m_directory;
};

TEST_F(WavWriterTest, WritesACanonicalFile) {
  const CapturedStderr log;
  {
    WavWriter writer("out.wav", 44100, 2);
    const short samples[] = {1, -2, 32767, -32768, 5, 6};
    writer.WriteSamples(samples, 4);
    writer.WriteSamples(samples, 0);
    writer.WriteSamples(samples + 4, 2);
  }
  EXPECT_EQ(ReadFile("out.wav"),
            WavBytes({.channels = 2, .rate = 44100}, {1, -2, 32767, -32768, 5, 6}));
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(WavWriterTest, WritesAHeaderAloneWhenThereAreNoSamples) {
  { const WavWriter writer("out.wav", 8000, 1); }
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({.rate = 8000}, {}));
}

TEST_F(WavWriterTest, ReplacesAnOlderFile) {
  WriteFile("out.wav", std::string(1000, 'x'));
  { const WavWriter writer("out.wav", 8000, 1); }
  EXPECT_THAT(ReadFile("out.wav"), SizeIs(44));
}

TEST_F(WavWriterTest, TakesTheRateAndChannelsOfAMissingInput) {
  { const WavWriter writer("out.wav", 0, 0); }
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({.channels = 0, .rate = 0}, {}));
}

TEST_F(WavWriterTest, RoundsAndLimitsFloats) {
  const float kInfinity = std::numeric_limits<float>::infinity();
  const std::vector<float> floats = {
      0.4F,      0.6F,  -0.6F,  32766.6F,  32767.4F,   32768.0F,      -32767.6F, -32768.4F,
      -32769.0F, 1e30F, -1e30F, kInfinity, -kInfinity, std::nanf(""), 1e-30F,    100.49F};
  {
    WavWriter writer("out.wav", 16000, 1);
    writer.WriteSamples(floats.data(), static_cast<unsigned>(floats.size()));
  }
  EXPECT_THAT(SamplesOf("out.wav"), ElementsAre(0, 1, -1, 32767, 32767, 32767, -32768, -32768,
                                                -32768, 32767, -32768, 32767, -32768, 0, 0, 100));
}

TEST_F(WavWriterTest, GivesBackWhatTheReaderReads) {
  std::vector<short> samples(65536);
  for (size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<short>(static_cast<int>(i) - 32768);
  }
  std::vector<float> floats(samples.begin(), samples.end());
  {
    WavWriter writer("shorts.wav", 48000, 2);
    writer.WriteSamples(samples.data(), 65536);
    WavWriter other("floats.wav", 48000, 2);
    other.WriteSamples(floats.data(), 60001);
    other.WriteSamples(floats.data() + 60001, 65536 - 60001);
  }
  EXPECT_EQ(SamplesOf("shorts.wav"), samples);
  EXPECT_EQ(SamplesOf("floats.wav"), samples);
}

TEST_F(WavWriterTest, KeepsNothingOfAFileThatCannotBeOpened) {
  mkfifo("pipe.wav", 0600);
  for (const char* name : {"missing/out.wav", ".", "pipe.wav", "/dev/full"}) {
    const CapturedStderr log;
    const short sample = 1;
    {
      WavWriter writer(name, 16000, 1);
      for (int i = 0; i < 10; ++i) writer.WriteSamples(&sample, 1);
    }
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(name)));
  }
}

TEST_F(WavWriterTest, FinishesWhatFitsOnAFullDisk) {
  const std::vector<short> block(160, 9);
  const CapturedStderr log;
  {
    const FileSizeLimit limit(44 + 1001);
    WavWriter writer("out.wav", 16000, 1);
    for (int i = 0; i < 10; ++i) writer.WriteSamples(block.data(), 160);
  }
  EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("500 of 1600 samples: File too large")));
  EXPECT_EQ(SamplesOf("out.wav"), std::vector<short>(500, 9));
}

TEST_F(WavWriterTest, KeepsNoMoreOnceTheDiskIsFull) {
  const std::vector<short> block(100000, 9);
  const CapturedStderr log;
  {
    WavWriter writer("out.wav", 16000, 1);
    {
      const FileSizeLimit limit(44 + 1000);
      writer.WriteSamples(block.data(), 100000);
    }
    writer.WriteSamples(block.data(), 100000);
  }
  EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("500 of 100000 samples: File too large")));
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({}, std::vector<short>(500, 9)));
}

TEST_F(WavWriterTest, GathersSmallWrites) {
  constexpr int kSamples = 65536;
  int growths = 0;
  struct stat before = {};
  stat("out.wav", &before);
  WavWriter writer("out.wav", 16000, 1);
  for (int i = 0; i < kSamples; ++i) {
    const auto sample = static_cast<short>(i);
    writer.WriteSamples(&sample, 1);
    struct stat now = {};
    ASSERT_EQ(stat("out.wav", &now), 0);
    if (now.st_size != before.st_size) ++growths;
    before = now;
  }
  EXPECT_LE(growths, kSamples / 1000);
}

// As at the end of a process whose routine has left its files open.
TEST_F(WavWriterTest, HoldsNoSamplesBackFromAFlushOfAllStreams) {
  WavWriter writer("out.wav", 16000, 1);
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({}, {}));
  const short samples[] = {1, 2, 3};
  writer.WriteSamples(samples, 3);
  fflush(nullptr);
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({}, {}) + SampleBytes({1, 2, 3}));
}

}  // namespace
