#include "recording/delivery.h"

#include <gmock/gmock.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/file_size_limit.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

// What the leak check of the address sanitizer passes over: libsndfile does not free the encoder of
// an Ogg file whose header it could not write.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:libvorbis\nleak:libogg\n"; }

namespace host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class DeliveryTest : public testing::Test {
 protected:
  // An output of stereo at 44.1 kHz.
  DeliveredOutput Output(const std::string& bytes, SampleType samples = SampleType::kPcm16) {
    WriteFile("out.pcm", bytes);
    const int frameBytes = samples == SampleType::kPcm16 ? 4 : 8;
    return {.path = "out.pcm",
            .container = Container::kHeaderless,
            .audio = AudioLayout{.samples = samples,
                                 .rate = 44100,
                                 .channels = 2,
                                 .bytes = bytes.size(),
                                 .frameBytes = frameBytes}};
  }

  DeliveredOutput FloatSine(double level) {
    std::vector<float> samples;
    for (const double sample : Sine(997, level, 44100, 44100, 2)) {
      samples.push_back(static_cast<float>(sample));
    }
    return Output({reinterpret_cast<const char*>(samples.data()), samples.size() * 4},
                  SampleType::kFloat32);
  }

  // What was done, or the fault.
  std::string To(const std::string& to, const DeliveredOutput& output) {
    const Delivery delivery = DeliverOutput(output, to, [] { return true; });
    if (delivery.fault) return delivery.fault->text;
    std::string text;
    for (const StagingStep& step : delivery.steps) text += (text.empty() ? "" : ", ") + step.text;
    return text;
  }

  TemporaryDirectory m_directory;
};

TEST_F(DeliveryTest, TheSameKindHasTheSameBytes) {
  const std::string samples = SampleBytes({1, 2, 3, 4});
  EXPECT_EQ(To("heard.raw", Output(samples)), "copied as it is");
  EXPECT_EQ(ReadFile("heard.raw"), samples);
  EXPECT_EQ(To("heard.PCM", Output(samples)), "copied as it is");
  // Its header is on purpose that of another file.
  const std::string wave = WavBytes({}, {1, 2, 3}) + "more";
  WriteFile("out.wav", wave);
  EXPECT_EQ(To("heard.wav", {.path = "out.wav", .container = Container::kWave}), "copied as it is");
  EXPECT_EQ(ReadFile("heard.wav"), wave);
  WriteFile("log.txt", "text");
  EXPECT_EQ(To("anything", {.path = "log.txt"}), "copied as it is");
  EXPECT_EQ(ReadFile("anything"), "text");
}

TEST_F(DeliveryTest, AWaveKeepsTheSampleType) {
  EXPECT_EQ(To("heard.wav", Output(SampleBytes({1, 2, 3, -4}))), "written as 16 bits");
  EXPECT_EQ(ReadFile("heard.wav"), WavBytes({.channels = 2, .rate = 44100}, {1, 2, 3, -4}));
  EXPECT_EQ(To("heard.wav", FloatSine(3)), "written as 32-bit floats");
  const Sound heard = ReadSound("heard.wav");
  EXPECT_EQ(heard.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
  EXPECT_NEAR(20 * std::log10(FitTone(heard.samples, 997, 44100, 2).amplitude), 3, 0.001);
}

TEST_F(DeliveryTest, AFlacOfFloatsHas24Bits) {
  EXPECT_EQ(To("heard.flac", FloatSine(-6)), "written as 24 bits");
  const Sound heard = ReadSound("heard.flac");
  EXPECT_EQ(heard.format, SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
  EXPECT_EQ(heard.rate, 44100);
  const ToneFit fit = FitTone(heard.samples, 997, 44100, 2, 1);
  EXPECT_NEAR(20 * std::log10(fit.amplitude), -6, 0.001);
  EXPECT_LT(fit.residualDb, -130);
  EXPECT_EQ(To("short.flac", Output(SampleBytes({1, 2, 3, -4}))), "written as 16 bits");
  EXPECT_EQ(ReadSound("short.flac").format, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
}

TEST_F(DeliveryTest, WhatWouldClipIsMadeSofter) {
  EXPECT_EQ(To("heard.flac", FloatSine(3)),
            "3.0 dB softer, so that nothing clips, written as 24 bits");
  const ToneFit fit = FitTone(ReadSound("heard.flac").samples, 997, 44100, 2);
  EXPECT_NEAR(20 * std::log10(fit.amplitude), 0, 0.001);
  EXPECT_LT(fit.residualDb, -130);
}

TEST_F(DeliveryTest, AnOggIsVorbis) {
  EXPECT_EQ(To("heard.ogg", FloatSine(-6)), "written as Vorbis");
  const Sound heard = ReadSound("heard.ogg");
  EXPECT_EQ(heard.format, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
  EXPECT_NEAR(20 * std::log10(FitTone(heard.samples, 997, 44100, 2).amplitude), -6, 0.1);
}

TEST_F(DeliveryTest, OtherEndingsStandForNothing) {
  EXPECT_EQ(EndingFault("heard.mp3", Container::kWave, "out.wav"),
            "cannot write heard.mp3: \".mp3\" stands for no kind of file; there are .wav, .flac, "
            ".ogg and .raw");
  EXPECT_THAT(EndingFault("heard", Container::kHeaderless, "out.pcm"), HasSubstr("has no ending"));
  EXPECT_EQ(EndingFault("heard.FLAC", Container::kWave, "out.wav"), "");
  EXPECT_EQ(EndingFault("heard.aac", Container::kOther, "out.aac"), "");
  EXPECT_EQ(EndingFault("heard.dat", Container::kWave, "out.dat"), "");
}

TEST_F(DeliveryTest, SaysBeforeWhereNothingCanBeWritten) {
  fs::create_directory("folder.wav");
  WriteFile("file", "");
  EXPECT_EQ(PlaceFault("heard.wav"), "");
  EXPECT_EQ(PlaceFault("./heard.wav"), "");
  EXPECT_EQ(PlaceFault("absent/heard.wav"),
            "cannot write absent/heard.wav: No such file or directory");
  EXPECT_EQ(PlaceFault("file/heard.wav"), "cannot write file/heard.wav: Not a directory");
  fs::create_directory("closed");
  fs::permissions("closed", fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(PlaceFault("closed/heard.wav"),
            geteuid() == 0 ? "" : "cannot write closed/heard.wav: Permission denied");
  EXPECT_EQ(PlaceFault("folder.wav"),
            "cannot write folder.wav: there is something else than a file");
}

TEST_F(DeliveryTest, FollowsALinkAndKeepsTheRights) {
  fs::create_directory("folder");
  WriteFile("folder/real.wav", "earlier");
  chmod("folder/real.wav", 0640);
  fs::create_symlink("folder/real.wav", "heard.wav");
  EXPECT_EQ(To("heard.wav", Output(SampleBytes({1, 2}))), "written as 16 bits");
  EXPECT_TRUE(fs::is_symlink("heard.wav"));
  EXPECT_EQ(ReadFile("folder/real.wav").size(), 48U);
  struct stat status;
  stat("folder/real.wav", &status);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(DeliveryTest, AFaultLeavesTheEarlierFile) {
  WriteFile("heard.wav", "earlier");
  const std::string samples = SampleBytes(std::vector<short>(100000, 3));
  for (const char* const to : {"heard.wav", "heard.flac", "heard.ogg", "heard.raw"}) {
    WriteFile(to, "earlier");
    const DeliveredOutput output = Output(samples);
    const FileSizeLimit limit(10);
    EXPECT_THAT(To(to, output), HasSubstr(std::string("cannot write ") + to)) << to;
    EXPECT_EQ(ReadFile(to), "earlier");
  }
  std::vector<float> floats(2000, 0.5F);
  floats[1001] = std::numeric_limits<float>::quiet_NaN();
  const DeliveredOutput output = Output(
      {reinterpret_cast<const char*>(floats.data()), floats.size() * 4}, SampleType::kFloat32);
  EXPECT_EQ(To("heard.wav", output),
            "output out.pcm holds a sample that is not finite, at 11.3 ms");
  EXPECT_EQ(ReadFile("heard.wav"), "earlier");
  fs::create_directory("folder.wav");
  EXPECT_EQ(To("folder.wav", output),
            "cannot write folder.wav: there is something else than a file");
  EXPECT_EQ(To("absent/heard.wav", output),
            "cannot write absent/heard.wav: No such file or directory");
  EXPECT_EQ(To("heard.wav", {.path = "absent.wav", .container = Container::kWave}),
            "output absent.wav cannot be read: No such file or directory");
}

}  // namespace
}  // namespace host
