#include "run/remedy.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/temporary_directory.h"

namespace host {
namespace {

class RemedyTest : public testing::Test {
 protected:
  static FilePlace Input(Container container, const std::string& path) {
    return {
        .use = {.container = container, .rate = 16000, .channels = 1}, .name = "in", .path = path};
  }

  static std::string Remedy(Container container) {
    return MissingInputRemedy(Input(container, "work/in"));
  }

  TemporaryDirectory m_directory;
};

TEST_F(RemedyTest, NamesAFileAndItsPath) {
  EXPECT_EQ(FileName(Input(Container::kOther, "work/in")), "in (work/in)");
  EXPECT_EQ(FileName(Input(Container::kOther, "")), "in") << "outside the workspace";
}

TEST_F(RemedyTest, SaysWhatToPutInThePlaceOfAMissingInput) {
  EXPECT_EQ(Remedy(Container::kOther), "; put a file of yours there");
  FilePlace list = Input(Container::kOther, "work/in");
  list.use.content = "a list";
  EXPECT_EQ(MissingInputRemedy(list), "; put a file of yours there: a list");
  EXPECT_EQ(Remedy(Container::kWave), "; put a file of yours there: 16-bit WAVE, 16000 Hz, mono");
  EXPECT_EQ(Remedy(Container::kRecording),
            "; put an audio file of yours there (WAVE, FLAC, Ogg, MP3 or AAC)");
  EXPECT_EQ(Remedy(Container::kHeaderless),
            "; it takes 16-bit samples, 16000 Hz, mono: mkdir -p work && "
            "ffmpeg -i YOUR_FILE -f s16le -ar 16000 -ac 1 work/in");
  std::filesystem::create_directory("work");
  EXPECT_EQ(Remedy(Container::kHeaderless),
            "; it takes 16-bit samples, 16000 Hz, mono: "
            "ffmpeg -i YOUR_FILE -f s16le -ar 16000 -ac 1 work/in");
  EXPECT_EQ(MissingInputRemedy(Input(Container::kHeaderless, "")), "");
}

TEST_F(RemedyTest, ConvertsInPlace) {
  FilePlace input = Input(Container::kHeaderless, "work/in");
  input.use.samples = SampleType::kFloat32;
  EXPECT_EQ(HeaderlessConversion(input),
            "ffmpeg -i work/in -f f32le -ar 16000 -ac 1 work/in.raw && mv work/in.raw work/in");
  input.use.rate = 0;
  EXPECT_EQ(WaveConversion(input),
            "ffmpeg -i work/in -c:a pcm_s16le -map_metadata -1 -bitexact -ac 1 work/in.16.wav && "
            "mv work/in.16.wav work/in");
  input.use.channels = 0;
  EXPECT_EQ(WaveConversion(input),
            "ffmpeg -i work/in -c:a pcm_s16le -map_metadata -1 -bitexact work/in.16.wav && mv "
            "work/in.16.wav work/in");
}

TEST_F(RemedyTest, QuotesWhatAShellWouldTakeApart) {
  EXPECT_EQ(HeaderlessConversion(Input(Container::kHeaderless, "it's")),
            "ffmpeg -i 'it'\\''s' -f s16le -ar 16000 -ac 1 'it'\\''s.raw' && mv 'it'\\''s.raw' "
            "'it'\\''s'");
  for (const char* const plain : {"az", "AZ", "09", "a_b", "a.b", "a/b", "a-b"}) {
    EXPECT_EQ(WaveConversion(Input(Container::kWave, plain)).find('\''), std::string::npos)
        << plain;
  }
  for (const char* const other : {"a b", "a;b", "a$b", "a*b", "a\\b", "a\"b", "a~b"}) {
    EXPECT_EQ(WaveConversion(Input(Container::kWave, other)).find("ffmpeg -i '"), 0U) << other;
  }
}

}  // namespace
}  // namespace host
