// Recordings that cannot be read, or not to their end, and those without a header.

#include "recording/recording.h"

#include <gmock/gmock.h>
#include <sndfile.h>

#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>

#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class RecordingTest : public testing::Test {
 protected:
  // Why these bytes are no input; what had been staged before stays.
  std::string Fault(const std::string& bytes, const StageWishes& wishes = {}) {
    WriteFile("my file", bytes);
    const Staging staging = StageOne("my file", WaveForm(), wishes);
    EXPECT_FALSE(std::filesystem::exists("work/in")) << "a file although there is a fault";
    std::filesystem::remove_all("work");
    EXPECT_EQ(staging.fault ? staging.fault->kind : RecordingFault::Kind::kStopped,
              RecordingFault::Kind::kInput);
    return FaultText(staging);
  }

  std::string Made(int format, int frames = 48000) {
    WriteSound("made", {.format = format, .samples = Sine(997, -6, 48000, frames)});
    return ReadFile("made");
  }

  TemporaryDirectory m_directory;
};

constexpr const char* kConversion =
    "to convert it: ffmpeg -i 'my file' -c:a pcm_s16le 'my file.wav'";

TEST_F(RecordingTest, ForOtherKindsSaysWhatConvertsThem) {
  const std::string mp4 = std::string("\0\0\0\x20", 4) + "ftypM4A " + std::string(100, '\0');
  EXPECT_EQ(Fault(mp4),
            std::string("input my file is an MP4 file that cannot be read here; ") + kConversion);
  EXPECT_EQ(
      Fault("wvpk" + std::string(100, '\1')),
      std::string("input my file is a WavPack file that cannot be read here; ") + kConversion);
  EXPECT_EQ(Fault("The quick brown fox jumps over the lazy dog. Pack my box with five dozen jugs"),
            "input my file is a text that cannot be read here");
}

TEST_F(RecordingTest, SamplesWithoutAHeaderAreToBeNamed) {
  EXPECT_THAT(Fault(SampleBytes(std::vector<short>(1000, 77))),
              AllOf(StartsWith("input my file is of no kind that is known; "),
                    HasSubstr("--raw RATE,CHANNELS,s16|s24|s32|f32"), EndsWith(kConversion)));
  EXPECT_THAT(Fault(""), StartsWith("input my file is of no kind that is known; "));
}

// As frames of MPEG audio do, too: to a decoder two are enough.
TEST_F(RecordingTest, NoiseIsNotTakenForMpegAudio) {
  constexpr size_t kFrameBytes = 417;  // At 128 kbit/s and 44.1 kHz.
  std::vector<short> noise = {-5, -1136, 100, 9};
  for (int i = 0; i < 20000; ++i) noise.push_back(static_cast<short>(i * 7919));
  std::string bytes = SampleBytes(noise);
  for (const size_t frame : {size_t{0}, size_t{1}}) {
    bytes.replace(frame * kFrameBytes, 4, "\xFF\xFB\x90\x64");
    EXPECT_THAT(Fault(bytes), HasSubstr("is of no kind that is known"));
  }
}

TEST_F(RecordingTest, TornFilesAreRefused) {
  for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_FLOAT,
                           SF_FORMAT_RF64 | SF_FORMAT_PCM_24, SF_FORMAT_AIFF | SF_FORMAT_PCM_16,
                           SF_FORMAT_CAF | SF_FORMAT_PCM_24, SF_FORMAT_FLAC | SF_FORMAT_PCM_16}) {
    SCOPED_TRACE(format);
    const std::string whole = Made(format);
    for (const size_t part : {whole.size() / 3, whole.size() - 9}) {
      EXPECT_THAT(Fault(whole.substr(0, part)), HasSubstr("is not whole: "));
    }
  }
}

TEST_F(RecordingTest, ATornFlacSaysHowMuchThereIs) {
  const std::string whole = Made(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 96000);
  EXPECT_THAT(Fault(whole.substr(0, whole.size() / 2)),
              testing::MatchesRegex("input my file is not whole: (0\\.9|1\\.0). s of 2\\.00 s can "
                                    "be read"));
}

TEST_F(RecordingTest, DamagedHeadersAreRefused) {
  std::string bytes = WavBytes({.rate = 16000}, {1, 2, 3});
  std::string noChannels = bytes;
  noChannels[22] = 0;
  EXPECT_THAT(Fault(noChannels), HasSubstr("no such channel count"));
  std::string highRate = bytes;
  highRate.replace(24, 4, "\xFF\xFF\xFF\x7F");
  EXPECT_THAT(Fault(highRate), HasSubstr("no such rate"));
  EXPECT_THAT(Fault(bytes.substr(0, 30)), HasSubstr("my file"));
  EXPECT_THAT(Fault(WavBytes({.rate = 16000}, {})), HasSubstr("my file holds no samples"));
  for (const char* const start : {"fLaC", "OggS", "caff", "FORM", ".snd", "RF64"}) {
    EXPECT_THAT(Fault(start + std::string(200, '\x55')), HasSubstr("my file")) << start;
  }
}

TEST_F(RecordingTest, EverySingleByteOfAHeaderMayBeWrong) {
  for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_FLAC | SF_FORMAT_PCM_16,
                           SF_FORMAT_AIFF | SF_FORMAT_PCM_16, SF_FORMAT_CAF | SF_FORMAT_PCM_16}) {
    const std::string whole = Made(format, 480);
    for (size_t at = 0; at < 64; ++at) {
      for (const char value : {'\0', '\x7F', '\xFF'}) {
        std::string bytes = whole;
        bytes[at] = value;
        WriteFile("my file", bytes);
        const Staging staging = StageOne("my file", WaveForm(), {.force = true});
        if (staging.fault) {
          EXPECT_EQ(staging.fault->kind, RecordingFault::Kind::kInput);
          EXPECT_THAT(staging.fault->text, StartsWith("input my file "));
        } else {
          EXPECT_GT(ReadFile("work/in").size(), 44U);
        }
      }
    }
  }
}

TEST_F(RecordingTest, WhatIsNoNumberIsRefused) {
  std::vector<double> samples(48000, 0.25);
  samples[24000] = std::numeric_limits<double>::quiet_NaN();
  WriteSound("made", {.format = SF_FORMAT_WAV | SF_FORMAT_DOUBLE, .samples = samples});
  EXPECT_THAT(Fault(ReadFile("made")), EndsWith("holds a sample that is not finite, at 0.50 s"));
  samples[24000] = std::numeric_limits<double>::infinity();
  WriteSound("made", {.format = SF_FORMAT_WAV | SF_FORMAT_DOUBLE, .samples = samples});
  EXPECT_THAT(Fault(ReadFile("made")), EndsWith("holds a sample that is not finite, at 0.50 s"));
}

TEST_F(RecordingTest, OnlyRegularFilesAreOpened) {
  std::filesystem::create_directory("folder");
  EXPECT_EQ(FaultText(StageOne("folder", WaveForm())),
            "input folder cannot be read: Is a directory");
  EXPECT_EQ(FaultText(StageOne("absent", WaveForm())),
            "input absent cannot be read: No such file or directory");
  EXPECT_EQ(FaultText(StageOne("/dev/zero", WaveForm())),
            "input /dev/zero cannot be read: Not a regular file");
}

// The three highest bits of each width.
TEST_F(RecordingTest, ReadsSamplesWithoutAHeader) {
  using Samples = RawForm::Samples;
  const float floats[] = {0.5F, -0.25F};
  std::string ofFloats(sizeof floats, '\0');
  memcpy(ofFloats.data(), floats, sizeof floats);
  const std::pair<Samples, std::string> forms[] = {
      {Samples::kS16, std::string("\x00\x40\x00\xE0", 4)},
      {Samples::kS24, std::string("\x00\x00\x40\x00\x00\xE0", 6)},
      {Samples::kS32, std::string("\x00\x00\x00\x40\x00\x00\x00\xE0", 8)},
      {Samples::kF32, ofFloats}};
  for (const auto& [samples, bytes] : forms) {
    WriteFile("raw", bytes);
    const StageWishes wishes = {.raw = RawForm{.rate = 8000, .channels = 1, .samples = samples},
                                .force = true};
    ASSERT_EQ(FaultText(StageOne("raw", WaveForm(), wishes)), "");
    EXPECT_THAT(Shorts("work/in", 44), ElementsAre(16384, -8192));
  }
}

TEST_F(RecordingTest, SamplesWithoutAHeaderReachToTheEndOfTheFile) {
  WriteFile("raw", SampleBytes({9, 9, 1, -2, 3}));
  FILE* const file = fopen("raw", "rb");
  RawForm form = {.rate = 8000, .channels = 1, .offset = 4};
  const OpenedRecording opened = OpenRawRecording(fileno(file), form);
  ASSERT_NE(opened.recording, nullptr);
  EXPECT_EQ(opened.recording->Format().frames, 3U);
  std::array<double, 4> samples = {};
  EXPECT_EQ(opened.recording->Read(samples.data(), samples.size()), 3U);
  EXPECT_THAT(samples, ElementsAre(1.0 / 32768, -2.0 / 32768, 3.0 / 32768, 0));
  form.offset = 11;
  EXPECT_EQ(OpenRawRecording(fileno(file), form).recording->Format().frames, 0U);
  fclose(file);
}

TEST_F(RecordingTest, APartOfAFrameIsRefused) {
  const StageWishes wishes = {.raw = RawForm{.rate = 8000, .channels = 2}};
  EXPECT_EQ(Fault(SampleBytes({1, 2, 3}), wishes),
            "input my file ends with a part of a frame: 6 bytes are no multiple of the 4 of 16-bit "
            "stereo");
}

TEST_F(RecordingTest, ARawFormIsNotForFilesOfAKnownKind) {
  WriteFile("wave", WavBytes({.rate = 16000}, {1, 2, 3}));
  const Staging staging =
      StageOne("wave", WaveForm(), {.raw = RawForm{.rate = 8000, .channels = 1}});
  EXPECT_EQ(StepNames(staging), "copy");
}

}  // namespace
}  // namespace host
