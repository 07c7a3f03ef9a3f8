#include "desktop/files/file_sink.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "desktop/codec/ffmpeg.h"
#include "desktop/files/adts_reader.h"
#include "desktop/files/open_audio_file.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using desktop::FileSink;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr bool kHasAac = AUDIO_ENGINE_HAS_AAC != 0;

// The frames of an AAC file, and how many bytes are none of them.
struct Frames {
  int count = 0;
  size_t otherBytes = 0;
};

Frames FramesOf(const char* name) {
  const desktop::File file(fopen(name, "rb"));
  const size_t size = std::filesystem::file_size(name);
  desktop::AdtsReader reader(file.get());
  const unsigned char* frame = nullptr;
  Frames frames;
  size_t bytes = 0;
  while (const size_t got = reader.Next(&frame)) {
    ++frames.count;
    bytes += got;
  }
  frames.otherBytes = size - bytes;
  return frames;
}

class FileSinkTest : public testing::Test {
 protected:
  // Writes `frames` frames of the tone in blocks of 10 ms, and leaves the file open.
  std::unique_ptr<FileSink> Written(const char* name, desktop::DeviceFormat format, bool append,
                                    size_t frames) {
    const auto tone = Tone(440, 8000, static_cast<int>(format.rate), static_cast<int>(frames),
                           static_cast<int>(format.channels));
    auto sink = FileSink::Create(name, format, append);
    EXPECT_NE(sink, nullptr);
    const size_t block = format.BlockFrames();
    for (size_t at = 0; sink != nullptr && at < frames; at += block) {
      EXPECT_TRUE(sink->Write(&tone[at * format.channels], std::min(block, frames - at)));
    }
    return sink;
  }

  // Writes until it fails, which the log tells once.
  void FillDisk(const char* name) {
    const FileSizeLimit limit(50001);
    const CapturedStderr log;
    const auto sink = FileSink::Create(name, {48000, 2}, false);
    ASSERT_NE(sink, nullptr);
    const auto tone = Tone(440, 8000, 48000, 480, 2);
    int blocks = 0;
    while (blocks < 1000 && sink->Write(tone.data(), 480)) ++blocks;
    EXPECT_LT(blocks, 1000);
    EXPECT_FALSE(sink->Write(tone.data(), 480));
    EXPECT_FALSE(sink->Finish());
    EXPECT_THAT(log.Lines(), SizeIs(1));
    EXPECT_GT(std::filesystem::file_size(name), 1000U);
  }

  const TemporaryDirectory m_directory;
};

TEST_F(FileSinkTest, WritesACanonicalWave) {
  Written("a.WAV", {16000, 1}, false, 16000);
  EXPECT_EQ(ReadFile("a.WAV"), WavBytes({}, Tone(440, 8000, 16000, 16000)));
}

TEST_F(FileSinkTest, KeepsAWaveWholeWhileItIsWritten) {
  const auto sink = Written("a.wav", {16000, 1}, false, 15000);
  const std::string bytes = ReadFile("a.wav");
  ASSERT_GT(bytes.size(), 2 * (15000 - 16000 / 2));
  std::vector<short> tone = Tone(440, 8000, 16000, 15000);
  tone.resize((bytes.size() - 44) / 2);
  EXPECT_EQ(bytes, WavBytes({}, tone));
}

TEST_F(FileSinkTest, GoesOnAfterTheLastFrameOfAWave) {
  const std::vector<short> before(100, 7);
  // A frame that was cut off, as after a crash, is overwritten.
  WriteFile("a.wav", WavBytes({.channels = 2}, before) + "x");
  Written("a.wav", {16000, 2}, true, 1600);
  std::vector<short> expected = before;
  const auto tone = Tone(440, 8000, 16000, 1600, 2);
  expected.insert(expected.end(), tone.begin(), tone.end());
  EXPECT_EQ(ReadFile("a.wav"), WavBytes({.channels = 2}, expected));
}

TEST_F(FileSinkTest, GoesOnInTheFormatOfTheFile) {
  WriteFile("a.wav", WavBytes({.channels = 1, .rate = 8000}, std::vector<short>(800)));
  Written("a.wav", {48000, 2}, true, 48000);
  std::unique_ptr<desktop::FileSource> source;
  ASSERT_EQ(desktop::OpenAudioFile("a.wav", &source), desktop::FileFault::kNone);
  EXPECT_EQ(source->Rate(), 8000U);
  EXPECT_EQ(source->Channels(), 1U);
  EXPECT_NEAR(static_cast<double>(source->Frames()), 8800, 200);
}

TEST_F(FileSinkTest, LeavesAFileAloneThatItCannotGoOnWith) {
  const std::string floats = WavBytes({.tag = 3, .bits = 32}, std::vector<short>(100));
  for (const std::string& bytes : {std::string("no WAVE file"), floats}) {
    WriteFile("a.wav", bytes);
    const CapturedStderr log;
    EXPECT_EQ(FileSink::Create("a.wav", {16000, 1}, true), nullptr);
    EXPECT_THAT(log.Lines(), SizeIs(1));
    EXPECT_EQ(ReadFile("a.wav"), bytes);
  }
}

// A header that was written over would run into the samples where those do not start at byte 44.
TEST_F(FileSinkTest, LeavesAWaveAloneWhoseHeaderIsLonger) {
  const std::string bytes = Riff(PlainFormat({}) + Chunk("LIST", "INFOISFTabcdefgh") +
                                 Chunk("data", SampleBytes(std::vector<short>(100, 7))));
  WriteFile("a.wav", bytes);
  const CapturedStderr log;
  EXPECT_EQ(FileSink::Create("a.wav", {16000, 1}, true), nullptr);
  EXPECT_THAT(log.Lines(), SizeIs(1));
  EXPECT_EQ(ReadFile("a.wav"), bytes);
}

// Two LC frames that hold nothing.
std::string AdtsBytes(unsigned rateIndex, unsigned channels) {
  constexpr size_t kBytes = 20;
  std::string frame(kBytes, '\0');
  const unsigned char header[7] = {0xff,
                                   0xf1,
                                   static_cast<unsigned char>(1 << 6 | rateIndex << 2),
                                   static_cast<unsigned char>(channels << 6),
                                   static_cast<unsigned char>(kBytes >> 3),
                                   static_cast<unsigned char>((kBytes & 7) << 5 | 0x1f),
                                   0xfc};
  std::copy_n(header, 7, frame.begin());
  return frame + frame;
}

TEST_F(FileSinkTest, LeavesAFileAloneWhoseFormatNoDeviceHas) {
  const std::vector<std::pair<const char*, std::string>> files = {
      {"a.wav", WavBytes({.channels = 1, .rate = 96000}, std::vector<short>(100))},
      {"a.wav", WavBytes({.channels = 1, .rate = 7999}, std::vector<short>(100))},
      {"a.wav", WavBytes({.channels = 3, .rate = 48000}, std::vector<short>(99))},
      {"a.aac", AdtsBytes(0, 1)},  // 96000 Hz
      {"a.aac", AdtsBytes(3, 3)}};
  for (const auto& [name, bytes] : files) {
    WriteFile(name, bytes);
    EXPECT_EQ(FileSink::Create(name, {16000, 1}, true), nullptr) << name;
    EXPECT_EQ(ReadFile(name), bytes);
  }
  if (!kHasAac) return;
  WriteFile("a.aac", AdtsBytes(3, 2));
  EXPECT_NE(FileSink::Create("a.aac", {16000, 1}, true), nullptr);
}

TEST_F(FileSinkTest, ReplacesAFile) {
  WriteFile("a.wav", "something else");
  Written("a.wav", {16000, 1}, false, 160);
  EXPECT_EQ(ReadFile("a.wav"), WavBytes({}, Tone(440, 8000, 16000, 160)));
}

TEST_F(FileSinkTest, RefusesOtherNamesAndPlaces) {
  for (const char* name : {"a.mp3", "aac", "", "no_folder/a.wav"}) {
    const CapturedStderr log;
    EXPECT_EQ(FileSink::Create(name, {}, false), nullptr) << name;
    EXPECT_THAT(log.Lines(), SizeIs(1)) << name;
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.path())) << name;
  }
}

TEST_F(FileSinkTest, EndsWithAWholeWaveOnAFullDisk) {
  FillDisk("a.wav");
  const std::string bytes = ReadFile("a.wav");
  std::vector<short> held((bytes.size() - 44) / 2);
  memcpy(held.data(), bytes.data() + 44, held.size() * 2);
  EXPECT_EQ(bytes, WavBytes({.channels = 2, .rate = 48000}, held));
}

TEST_F(FileSinkTest, EndsWithWholeAacOnAFullDisk) {
  if (!kHasAac) GTEST_SKIP() << "libfdk-aac is missing";
  FillDisk("a.aac");
  EXPECT_EQ(FramesOf("a.aac").otherBytes, 0U);
}

TEST_F(FileSinkTest, WritesAacThatOthersDecode) {
  if (!kHasAac) GTEST_SKIP() << "libfdk-aac is missing";
  for (const desktop::DeviceFormat format :
       {desktop::DeviceFormat{44100, 2}, {48000, 1}, {8000, 1}, {11025, 2}}) {
    Written("a.aac", format, false, 2 * format.rate);
    const Frames frames = FramesOf("a.aac");
    EXPECT_EQ(frames.otherBytes, 0U);
    // All samples, and what the encoder holds back.
    EXPECT_NEAR(frames.count, 2.0 * format.rate / 1024 + 1.5, 1);
    const Decoded decoded = DecodeWithFfmpeg(ReadFile("a.aac"));
    if (!decoded.available) continue;
    EXPECT_THAT(decoded.complaints, IsEmpty());
    EXPECT_EQ(decoded.rate, static_cast<int>(format.rate));
    EXPECT_EQ(decoded.channels, static_cast<int>(format.channels));
  }
}

TEST_F(FileSinkTest, KeepsAacWholeWhileItIsWritten) {
  if (!kHasAac) GTEST_SKIP() << "libfdk-aac is missing";
  const auto sink = Written("a.aac", {44100, 2}, false, 441 * 55);
  const Frames frames = FramesOf("a.aac");
  EXPECT_EQ(frames.otherBytes, 0U);
  // No more than 200 ms and what the encoder holds back are missing.
  EXPECT_GE(frames.count, 441 * (55 - 20) / 1024 - 2);
}

TEST_F(FileSinkTest, GoesOnAfterTheLastFrameOfAnAacFile) {
  if (!kHasAac) GTEST_SKIP() << "libfdk-aac is missing";
  Written("a.aac", {44100, 2}, false, 44100);
  const std::string before = ReadFile("a.aac");
  const int frames = FramesOf("a.aac").count;
  WriteFile("a.aac", before + before.substr(0, 99));  // Cut off in a frame.
  Written("a.aac", {16000, 1}, true, 16000);
  EXPECT_EQ(ReadFile("a.aac").substr(0, before.size()), before);
  const Frames both = FramesOf("a.aac");
  EXPECT_EQ(both.otherBytes, 0U);
  EXPECT_NEAR(both.count, 2 * frames, 1);
  const Decoded decoded = DecodeWithFfmpeg(ReadFile("a.aac"));
  if (!decoded.available) return;
  EXPECT_THAT(decoded.complaints, IsEmpty());
  EXPECT_EQ(decoded.channels, 2);
}

TEST_F(FileSinkTest, LeavesNothingOfAFormatThatAacDoesNotHave) {
  const CapturedStderr log;
  EXPECT_EQ(FileSink::Create("a.aac", {37000, 1}, false), nullptr);
  EXPECT_FALSE(std::filesystem::exists("a.aac"));
}

}  // namespace
