#include "engine_api/common/wav_file_writer.h"

#include <gmock/gmock.h>

#include <string>

#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class WavFileWriterTest : public testing::Test {
 protected:
  TemporaryDirectory m_directory;
};

TEST_F(WavFileWriterTest, WritesACanonicalFile) {
  const std::string bytes = SampleBytes({1, -2, 3, -4, 5, 6});
  const CapturedStderr log;
  {
    CWavFileWriter writer(44100, 2, 16, "out.wav");
    writer.Write(bytes.data(), 8);
    writer.Write(bytes.data(), 0);
    writer.Write(bytes.data(), -5);
    writer.Write(bytes.data() + 8, 4);
  }
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({.channels = 2, .rate = 44100}, {1, -2, 3, -4, 5, 6}));
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(WavFileWriterTest, AnnouncesNoDataWhileItWrites) {
  CWavFileWriter writer(8000, 1, 16, "out.wav");
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({.rate = 8000}, {}));
  writer.Write("abcd", 4);
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({.rate = 8000}, {}) + "abcd");
}

TEST_F(WavFileWriterTest, PadsDataOfAnOddLength) {
  {
    CWavFileWriter writer(8000, 1, 8, "out.wav");
    writer.Write("abc", 3);
  }
  EXPECT_EQ(ReadFile("out.wav"),
            Riff(PlainFormat({.rate = 8000, .bits = 8}) + Chunk("data", "abc")));
}

TEST_F(WavFileWriterTest, KeepsNothingOfAFileThatCannotBeOpened) {
  for (const char* name : {"missing/out.wav", ".", "/dev/full"}) {
    const CapturedStderr log;
    {
      CWavFileWriter writer(16000, 1, 16, name);
      for (int i = 0; i < 10; ++i) writer.Write("ab", 2);
    }
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(name)));
  }
}

TEST_F(WavFileWriterTest, FinishesWhatFitsOnAFullDisk) {
  const std::string block(320, 'a');
  const CapturedStderr log;
  {
    const FileSizeLimit limit(44 + 1000);
    CWavFileWriter writer(16000, 1, 16, "out.wav");
    for (int i = 0; i < 10; ++i) writer.Write(block.data(), 320);
  }
  EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("out.wav")));
  EXPECT_EQ(ReadFile("out.wav"), Riff(PlainFormat({}) + Chunk("data", std::string(1000, 'a'))));
}

}  // namespace
