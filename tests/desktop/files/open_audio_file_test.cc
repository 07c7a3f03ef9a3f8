#include "desktop/files/open_audio_file.h"

#include <gmock/gmock.h>
#include <sndfile.h>

#include <filesystem>
#include <numbers>

#include "desktop/files/file_sink.h"
#include "desktop/files/refused_files.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using desktop::FileFault;
using desktop::FileSource;
using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;

constexpr bool kHasAac = AUDIO_ENGINE_HAS_AAC != 0;

void WriteSound(const char* name, int format, const std::vector<short>& samples, int channels) {
  SF_INFO info = {};
  info.samplerate = 44100;
  info.channels = channels;
  info.format = format;
  SNDFILE* sound = sf_open(name, SFM_WRITE, &info);
  ASSERT_NE(sound, nullptr) << sf_strerror(nullptr);
  std::vector<float> floats(samples.size());  // Integers come out distorted in an MP3.
  for (size_t i = 0; i < floats.size(); ++i) floats[i] = static_cast<float>(samples[i]) / 32768;
  sf_write_float(sound, floats.data(), static_cast<sf_count_t>(floats.size()));
  sf_close(sound);
}

std::vector<short> ReadAll(FileSource& source, size_t frames = 441) {
  std::vector<short> samples;
  std::vector<short> block(frames * source.Channels());
  while (const size_t got = source.Read(block.data(), frames)) {
    samples.insert(samples.end(), block.begin(),
                   block.begin() + static_cast<ptrdiff_t>(got * source.Channels()));
  }
  return samples;
}

class OpenAudioFile : public testing::Test {
 protected:
  std::unique_ptr<FileSource> Opened(const char* name) {
    std::unique_ptr<FileSource> source;
    EXPECT_EQ(desktop::OpenAudioFile(name, &source), FileFault::kNone) << name;
    return source;
  }

  // The answer for a file that cannot be played, which the log tells once.
  FileFault Refused(const char* name) {
    const CapturedStderr log;
    std::unique_ptr<FileSource> source;
    const FileFault fault = desktop::OpenAudioFile(name, &source);
    EXPECT_EQ(source, nullptr) << name;
    EXPECT_THAT(log.Lines(), SizeIs(1)) << name;
    return fault;
  }

  const TemporaryDirectory m_directory;
  const std::vector<short> m_tone = Tone(440, 12000, 44100, 44100, 2);
};

TEST_F(OpenAudioFile, ReadsWaveSamplesBitForBit) {
  WriteFile("a.wav", WavBytes({.channels = 2, .rate = 44100}, m_tone));
  const auto source = Opened("a.wav");
  EXPECT_EQ(source->Rate(), 44100U);
  EXPECT_EQ(source->Channels(), 2U);
  EXPECT_EQ(source->Frames(), 44100U);
  EXPECT_EQ(source->LengthMs(), 1000U);
  EXPECT_EQ(ReadAll(*source), m_tone);
  EXPECT_FALSE(source->Failed());
  short more[2];
  EXPECT_EQ(source->Read(more, 1), 0U);

  ASSERT_TRUE(source->Rewind());
  EXPECT_EQ(ReadAll(*source, 10000), m_tone);
}

TEST_F(OpenAudioFile, KnowsAFileByItsContentAndNotByItsName) {
  WriteSound("flac.wav", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, m_tone, 2);
  EXPECT_EQ(ReadAll(*Opened("flac.wav")), m_tone);
}

TEST_F(OpenAudioFile, ReadsLossyFilesAsTheTonesThatTheyHold) {
  WriteSound("a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, m_tone, 2);
  WriteSound("a.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, m_tone, 2);
  for (const char* name : {"a.ogg", "a.mp3"}) {
    const auto source = Opened(name);
    const std::vector<short> samples = ReadAll(*source);
    EXPECT_FALSE(source->Failed()) << name;
    EXPECT_NEAR(static_cast<double>(samples.size()), 88200, 2 * 2304) << name;
    const ToneFit fit = FitTone(samples, 440, 44100, 2);
    EXPECT_NEAR(fit.amplitude, 12000, 120) << name;
    EXPECT_LT(fit.residualDb, -40) << name;
  }
}

TEST_F(OpenAudioFile, RoundsOtherPrecisionsAndLimitsWhatIsBeyondFullScale) {
  SF_INFO info = {};
  info.samplerate = 16000;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  SNDFILE* sound = sf_open("float.wav", SFM_WRITE, &info);
  ASSERT_NE(sound, nullptr);
  const float in[] = {0.5F, 1.5F, -1.5F, 0.75F / 32768, std::numeric_limits<float>::quiet_NaN()};
  sf_write_float(sound, in, 5);
  sf_close(sound);
  EXPECT_EQ(ReadAll(*Opened("float.wav")), (std::vector<short>{16384, 32767, -32768, 1, 0}));
}

TEST_F(OpenAudioFile, ReadsAacWithItsLengthFromItsFrames) {
  if (!kHasAac) GTEST_SKIP() << "libfdk-aac is missing";
  auto sink = desktop::FileSink::Create("a.aac", {44100, 2}, false);
  ASSERT_NE(sink, nullptr);
  ASSERT_TRUE(sink->Write(m_tone.data(), 44100));
  ASSERT_TRUE(sink->Finish());
  // As other programs leave it: a tag in front, and bytes that are no frame.
  const std::string tag("ID3\4\0\0\0\0\0\5abcde", 15);
  WriteFile("b.wav", tag + ReadFile("a.aac") + "no frame");

  const auto source = Opened("b.wav");
  EXPECT_EQ(source->Rate(), 44100U);
  EXPECT_EQ(source->Channels(), 2U);
  const std::vector<short> samples = ReadAll(*source);
  EXPECT_EQ(samples.size(), 2 * source->Frames());
  EXPECT_NEAR(static_cast<double>(source->Frames()), 44100, 3 * 1024);
  const ToneFit fit = FitTone(samples, 440, 44100, 2);
  EXPECT_NEAR(fit.amplitude, 12000, 120);
  EXPECT_LT(fit.residualDb, -40);

  ASSERT_TRUE(source->Rewind());
  EXPECT_EQ(ReadAll(*source, 5000), samples);
  EXPECT_FALSE(source->Failed());
}

TEST_F(OpenAudioFile, KnowsThatItCouldNotReadToTheEnd) {
  WriteFile("a.wav", WavBytes({.channels = 2, .rate = 44100}, m_tone));
  if (kHasAac) desktop::FileSink::Create("a.aac", {44100, 2}, false)->Write(m_tone.data(), 44100);
  for (const char* name : {"a.wav", "a.aac"}) {
    if (!std::filesystem::exists(name)) continue;
    const auto source = Opened(name);
    std::filesystem::resize_file(name, std::filesystem::file_size(name) / 2);
    EXPECT_NEAR(static_cast<double>(ReadAll(*source).size()), 44100, 4096) << name;
    EXPECT_TRUE(source->Failed()) << name;
    ASSERT_TRUE(source->Rewind());
    EXPECT_FALSE(source->Failed()) << name;
  }
}

TEST_F(OpenAudioFile, ReadsDamagedAacToItsEnd) {
  if (!kHasAac) GTEST_SKIP() << "libfdk-aac is missing";
  auto sink = desktop::FileSink::Create("a.aac", {44100, 2}, false);
  ASSERT_NE(sink, nullptr);
  sink->Write(m_tone.data(), 44100);
  sink->Finish();
  std::string bytes = ReadFile("a.aac");
  for (size_t i = bytes.size() / 3; i < bytes.size(); i += 131) bytes[i] ^= 0x55;
  WriteFile("a.aac", bytes);
  const auto source = Opened("a.aac");
  EXPECT_EQ(ReadAll(*source).size(), 2 * source->Frames());
  EXPECT_GT(source->Frames(), 10000U);
}

TEST_F(OpenAudioFile, SaysWhyAFileCannotBePlayed) {
  EXPECT_EQ(Refused("missing.wav"), FileFault::kCannotOpen);
  EXPECT_EQ(Refused(""), FileFault::kCannotOpen);
  EXPECT_EQ(Refused(nullptr), FileFault::kCannotOpen);
  EXPECT_EQ(Refused("."), FileFault::kCannotOpen);

  WriteFile("empty.wav", "");
  EXPECT_EQ(Refused("empty.wav"), FileFault::kUnknownKind);
  WriteFile("text.wav", "To be, or not to be, that is the question.");
  EXPECT_EQ(Refused("text.wav"), FileFault::kUnknownKind);

  WriteFile("cut.wav", WavBytes({}, m_tone).substr(0, 30));
  EXPECT_EQ(Refused("cut.wav"), FileFault::kDamaged);

  WriteFile("unknown.wav", WavBytes({.tag = 0x161}, m_tone));
  EXPECT_EQ(Refused("unknown.wav"), FileFault::kNoDecoder);
}

#if !AUDIO_ENGINE_HAS_AAC
TEST_F(OpenAudioFile, RemembersWhatItRefused) {
  WriteFile("noise", std::string(100, 'x'));
  const size_t before = desktop::RefusedFiles().size();
  Refused("noise");
  Refused("nowhere");
  const std::vector<desktop::RefusedFile> refused = desktop::RefusedFiles();
  ASSERT_EQ(refused.size(), before + 2);
  EXPECT_EQ(refused[before].name, "noise");
  EXPECT_EQ(refused[before].reason, "it holds no audio");
  EXPECT_EQ(refused[before + 1].name, "nowhere");
  EXPECT_EQ(refused[before + 1].reason, "No such file or directory");
}

TEST_F(OpenAudioFile, HasNoDecoderForAacWithoutTheLibrary) {
  WriteFile("a.aac", std::string("\xff\xf1\x50\x80\x01\x1f\xfc", 7) + "x");
  EXPECT_EQ(Refused("a.aac"), FileFault::kNoDecoder);
}
#endif

}  // namespace
