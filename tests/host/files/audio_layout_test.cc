#include "files/audio_layout.h"

#include <gmock/gmock.h>

#include <string>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

class AudioLayoutTest : public testing::Test {
 protected:
  std::optional<AudioLayout> Find(const FileUse& use, const std::string& bytes) {
    WriteFile("audio", bytes);
    FILE* const file = fopen("audio", "rb");
    const auto layout = FindAudio(use, file, bytes.size());
    fclose(file);
    return layout;
  }

  std::optional<AudioLayout> FindWave(const std::string& bytes) {
    return Find({.container = Container::kWave}, bytes);
  }

  TemporaryDirectory m_directory;
};

TEST_F(AudioLayoutTest, TakesHeaderlessAudioAsDeclared) {
  const auto layout = Find({.container = Container::kHeaderless,
                            .samples = SampleType::kFloat32,
                            .rate = 44100,
                            .channels = 2},
                           std::string(88200 * 4, 'x'));
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->samples, SampleType::kFloat32);
  EXPECT_EQ(layout->frameBytes, 8);
  EXPECT_DOUBLE_EQ(layout->Seconds(), 1);
}

TEST_F(AudioLayoutTest, LooksIntoRecordingsThatAreWaves) {
  const FileUse recording = {.container = Container::kRecording};
  const auto layout = Find(recording, WavBytes({.rate = 8000}, {1, 2}));
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->rate, 8000);
  EXPECT_EQ(Find(recording, "fLaC"), std::nullopt);
}

TEST_F(AudioLayoutTest, FindsNoAudioInOtherFiles) {
  EXPECT_EQ(Find({.container = Container::kOther}, "text"), std::nullopt);
}

TEST_F(AudioLayoutTest, ReadsWaveHeaders) {
  const auto layout =
      FindWave(Riff(Chunk("LIST", "odd") + PlainFormat({.channels = 2, .rate = 22050}) +
                    Chunk("data", std::string(44100, 'x'))));
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->samples, SampleType::kPcm16);
  EXPECT_EQ(layout->rate, 22050);
  EXPECT_EQ(layout->channels, 2);
  EXPECT_EQ(layout->offset, 12U + 12 + 24 + 8);
  EXPECT_DOUBLE_EQ(layout->Seconds(), 0.5);
}

TEST_F(AudioLayoutTest, TellsFloatsFromOtherSamples) {
  const auto samples = [this](const std::string& format) {
    return FindWave(Riff(format + Chunk("data", "12345678")))->samples;
  };
  EXPECT_EQ(samples(PlainFormat({.tag = 3, .bits = 32})), SampleType::kFloat32);
  EXPECT_EQ(samples(ExtensibleFormat({.bits = 16}, 1)), SampleType::kPcm16);
  EXPECT_EQ(samples(PlainFormat({.bits = 24})), std::nullopt);
  EXPECT_EQ(samples(PlainFormat({.tag = 7, .bits = 8})), std::nullopt);
  EXPECT_EQ(samples(PlainFormat({.bits = 16, .blockAlign = 4})), std::nullopt) << "padded";
}

TEST_F(AudioLayoutTest, SaysWhatTheSamplesAre) {
  const auto words = [this](const WavFormat& format) {
    return FindWave(Riff(PlainFormat(format) + Chunk("data", "123456789012")))->sampleWords;
  };
  EXPECT_EQ(words({}), "16-bit");
  EXPECT_EQ(words({.channels = 2, .bits = 24}), "24-bit");
  EXPECT_EQ(words({.tag = 3, .channels = 2, .bits = 32}), "32-bit float");
  EXPECT_EQ(words({.bits = 16, .blockAlign = 4}), "16-bit in 4 bytes a frame");
  EXPECT_EQ(words({.channels = 2, .bits = 24, .blockAlign = 8}), "24-bit in 8 bytes a frame");
  EXPECT_EQ(words({.tag = 6, .bits = 8}), "A-law");
  EXPECT_EQ(words({.tag = 7, .bits = 8}), "mu-law");
  EXPECT_EQ(words({.tag = 2, .bits = 4, .blockAlign = 2}), "of a coding that is not known");
}

TEST_F(AudioLayoutTest, TakesNoMoreSamplesThanThereAre) {
  const auto layout = FindWave(Riff(PlainFormat({}) + Chunk("data", "1234", 0xFFFFFFFF)));
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->bytes, 4U);
}

TEST_F(AudioLayoutTest, FindsNothingInWhatIsNoWave) {
  const std::string data = Chunk("data", "1234");
  for (const std::string& bytes :
       {std::string(), std::string("RIFF"), std::string(100, 'x'), Riff(""), Riff(PlainFormat({})),
        Riff(data), Riff(Chunk("fmt ", "short") + data), Riff(PlainFormat({.channels = 0}) + data),
        Riff(PlainFormat({.rate = 0}) + data)}) {
    EXPECT_EQ(FindWave(bytes), std::nullopt) << testing::PrintToString(bytes);
  }
}

TEST_F(AudioLayoutTest, SaysWhatShowsThatAFileIsNotWhole) {
  const FileUse stereo = {.container = Container::kHeaderless, .rate = 8000, .channels = 2};
  EXPECT_EQ(Find(stereo, "12345678")->flaw, "");
  EXPECT_EQ(Find(stereo, "123456")->flaw, "it ends with a part of a frame, 2 bytes");

  const std::string mono = PlainFormat({});
  const std::string whole = Riff(mono + Chunk("data", "12345678"));
  EXPECT_EQ(FindWave(whole)->flaw, "");
  EXPECT_EQ(FindWave(Riff(mono + Chunk("data", "12345678") + Chunk("LIST", "odd")))->flaw, "");
  EXPECT_EQ(FindWave(Riff(mono + Chunk("data", "1234567")))->flaw,
            "it ends with a part of a frame, 1 byte");
  EXPECT_EQ(FindWave(whole.substr(0, whole.size() - 2))->flaw,
            "its header announces 8 bytes of samples, there are 6");
  EXPECT_EQ(FindWave(whole.substr(0, whole.size() - 7))->flaw,
            "its header announces 8 bytes of samples, there is 1");
  const std::string single = Riff(mono + Chunk("data", "1"));
  EXPECT_EQ(FindWave(single.substr(0, single.size() - 2))->flaw,
            "its header announces 1 byte of samples, there are 0");
  EXPECT_EQ(FindWave(whole + "90")->flaw, "its header announces 8 bytes of samples, there are 10");
  EXPECT_EQ(FindWave(whole + "1234567890abcdef")->flaw,
            "its header announces 8 bytes of samples, there are 24");

  std::string unfinished = whole;
  unfinished.replace(unfinished.find("data") + 4, 4, 4, '\0');
  EXPECT_EQ(FindWave(unfinished)->flaw, "its header announces 0 bytes of samples, there are 8");
  unfinished.replace(4, 4, 4, '\0');
  EXPECT_EQ(FindWave(unfinished)->flaw, "its header announces 0 bytes of samples, there are 8")
      << "left open, which a reader takes for all that follows";
  std::string riff = whole;
  riff[4] = '\x20';
  EXPECT_EQ(FindWave(riff)->flaw, "its header announces 40 bytes in all, there are 52");
}

}  // namespace
}  // namespace host
