// Staging beside a reader and writer of others: ffmpeg makes the recordings and reads what is
// staged.

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"

namespace host {
namespace {

// What ffmpeg does with these words, and nothing said but faults.
bool Ffmpeg(const std::string& words) {
  return std::system(("ffmpeg -nostdin -v error -y " + words).c_str()) == 0;
}

bool HasFfmpeg() { return std::system("ffmpeg -version > /dev/null 2>&1") == 0; }

struct Source {
  const char* name;
  const char* encoding;  // In ffmpeg's words, with the ending that stands for the container.
  int rate;
  double levelTolerance;  // dB
  int lengthTolerance;    // Frames of the source.
  bool whole;             // 24 bits, or floats.
};

void PrintTo(const Source& source, std::ostream* out) { *out << source.name; }

constexpr Source kSources[] = {
    {"Wave8", "-c:a pcm_u8 source.wav", 44100, 0.1, 0, false},
    {"Wave16", "-c:a pcm_s16le source.wav", 44100, 0.01, 0, false},
    {"Wave24", "-c:a pcm_s24le source.wav", 96000, 0.01, 0, true},
    {"WaveFloat", "-c:a pcm_f32le source.wav", 48000, 0.01, 0, true},
    {"WaveALaw", "-c:a pcm_alaw source.wav", 16000, 0.2, 0, false},
    {"Rf64", "-rf64 always -c:a pcm_s24le source.wav", 48000, 0.01, 0, true},
    {"Aiff", "-c:a pcm_s24be source.aiff", 44100, 0.01, 0, true},
    {"Caf", "-c:a pcm_f32le source.caf", 32000, 0.01, 0, true},
    {"Flac", "-c:a flac -sample_fmt s32 -bits_per_raw_sample 24 source.flac", 96000, 0.01, 0, true},
    {"Vorbis", "-c:a libvorbis -q:a 6 source.ogg", 44100, 0.1, 2048, false},
    {"Opus", "-c:a libopus -b:a 160k source.opus", 48000, 0.1, 960, false},
    {"Mp3", "-c:a libmp3lame -b:a 256k source.mp3", 44100, 0.1, 1152, false},
};

struct Target {
  const char* name;
  Form form;
  const char* reading;  // How ffmpeg is told what it is.
};

std::vector<Target> Targets() {
  const auto form = [](Form::Kind kind, SampleType samples, WaveFormat format) -> Form {
    return {.kind = kind, .samples = samples, .formats = {format}};
  };
  return {{"own", form(Form::Kind::kWave, SampleType::kPcm16, {}), "-f wav"},
          {"wave16", form(Form::Kind::kWave, SampleType::kPcm16, {16000, 1}), "-f wav"},
          {"raw44", form(Form::Kind::kHeaderless, SampleType::kPcm16, {44100, 2}),
           "-f s16le -ar 44100 -ac 2"},
          {"float48", form(Form::Kind::kHeaderless, SampleType::kFloat32, {48000, 1}),
           "-f f32le -ar 48000 -ac 1"}};
}

// Interleaved samples, full scale at 1.
std::vector<double> ReadBack(const std::string& reading) {
  EXPECT_TRUE(Ffmpeg(reading + " -i work/in -f f64le -c:a pcm_f64le read.raw"));
  const std::string bytes = ReadFile("read.raw");
  std::vector<double> samples(bytes.size() / sizeof(double));
  memcpy(samples.data(), bytes.data(), samples.size() * sizeof(double));
  return samples;
}

class IndependentReader : public testing::TestWithParam<Source> {
 protected:
  // Two seconds of 997 Hz at -1 dBFS in both channels.
  static std::string Tone(const Source& source) {
    const std::string sine = "0.8912509381*sin(2*PI*997*t)";
    return "-f lavfi -i 'aevalsrc=" + sine + "|" + sine + ":d=2:s=" + std::to_string(source.rate) +
           "' -bitexact " + source.encoding;
  }

  static std::string Path(const Source& source) {
    const std::string encoding = source.encoding;
    return encoding.substr(encoding.rfind(' ') + 1);
  }

  TemporaryDirectory m_directory;
};

TEST_P(IndependentReader, FindsLevelLengthAndNothingElse) {
  if (!HasFfmpeg()) GTEST_SKIP() << "ffmpeg is not installed";
  const Source& source = GetParam();
  ASSERT_TRUE(Ffmpeg(Tone(source)));
  for (const Target& target : Targets()) {
    SCOPED_TRACE(target.name);
    WaveFormat format = target.form.formats[0];
    if (format.rate == 0) format = {source.rate, 2};
    ASSERT_EQ(FaultText(StageOne(Path(source), target.form)), "");
    const std::vector<double> made = ReadBack(target.reading);
    const double ratio = static_cast<double>(format.rate) / source.rate;
    EXPECT_NEAR(static_cast<double>(made.size()) / format.channels, 2.0 * format.rate,
                source.lengthTolerance * ratio + 1);
    for (int channel = 0; channel < format.channels; ++channel) {
      const ToneFit fit = FitTone(made, 997, format.rate, format.channels, channel);
      EXPECT_NEAR(20 * std::log10(fit.amplitude), -1, source.levelTolerance);
      if (!source.whole) continue;
      if (target.form.samples == SampleType::kFloat32) {
        EXPECT_LT(fit.residualDb, -120);
      } else {
        EXPECT_NEAR(fit.residualDb, -92.3, 0.5);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, IndependentReader, testing::ValuesIn(kSources),
                         [](const auto& test) { return test.param.name; });

// Whoever wrote it: a file that has the form is taken byte for byte.
TEST_F(IndependentReader, TheRightFormKeepsItsBytes) {
  if (!HasFfmpeg()) GTEST_SKIP() << "ffmpeg is not installed";
  const std::string tone = "-f lavfi -i 'sine=997:r=44100:d=1' ";
  ASSERT_TRUE(Ffmpeg(tone + "-ac 1 -ar 16000 -c:a pcm_s16le own.wav"));
  for (const Form& form : {WaveForm(), WaveForm({16000, 1})}) {
    EXPECT_EQ(StepNames(StageOne("own.wav", form)), "copy");
    EXPECT_EQ(ReadFile("work/in"), ReadFile("own.wav"));
  }
  ASSERT_TRUE(Ffmpeg(tone + "-ac 2 -ar 44100 -f s16le own.pcm"));
  StageWishes wishes;
  wishes.raw = RawForm{.rate = 44100, .channels = 2};
  EXPECT_EQ(StepNames(StageOne("own.pcm", RawShorts({44100, 2}), wishes)), "copy");
  EXPECT_EQ(ReadFile("work/in"), ReadFile("own.pcm"));
}

}  // namespace
}  // namespace host
