// Every kind of recording in every form: its level, its length and what it is then.

#include <gmock/gmock.h>
#include <sndfile.h>

#include <cmath>

#include "host/recording/sound_files.h"
#include "support/temporary_directory.h"
#include "support/tone.h"

namespace host {
namespace {

struct Kind {
  const char* name;
  int format;
  int rate;
  double levelTolerance;  // dB
  int lengthTolerance;    // Frames of the source.
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

constexpr Kind kKinds[] = {
    {"Wave8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 44100, 0.05, 0},
    {"Wave16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 0.01, 0},
    {"Wave24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 96000, 0.01, 0},
    {"Wave32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 48000, 0.01, 0},
    {"WaveFloat", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000, 0.01, 0},
    {"WaveDouble", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 22050, 0.01, 0},
    {"WaveALaw", SF_FORMAT_WAV | SF_FORMAT_ALAW, 8000, 0.1, 0},
    {"WaveMuLaw", SF_FORMAT_WAV | SF_FORMAT_ULAW, 8000, 0.1, 0},
    {"WaveExtensible24", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 192000, 0.01, 0},
    {"Rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_24, 48000, 0.01, 0},
    {"Aiff24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 44100, 0.01, 0},
    {"AiffFloat", SF_FORMAT_AIFF | SF_FORMAT_FLOAT, 32000, 0.01, 0},
    {"Caf24", SF_FORMAT_CAF | SF_FORMAT_PCM_24, 88200, 0.01, 0},
    {"Flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 44100, 0.01, 0},
    {"Flac24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 96000, 0.01, 0},
    {"OggVorbis", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 44100, 0.1, 2048},
    {"OggOpus", SF_FORMAT_OGG | SF_FORMAT_OPUS, 48000, 0.1, 960},
    {"Mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 44100, 0.1, 1152},
};

struct Target {
  const char* name;
  Form form;
};

std::vector<Target> Targets() {
  const auto form = [](Form::Kind kind, SampleType samples, WaveFormat format) -> Form {
    return {.kind = kind, .samples = samples, .formats = {format}};
  };
  return {{"own", form(Form::Kind::kWave, SampleType::kPcm16, {})},
          {"wave16", form(Form::Kind::kWave, SampleType::kPcm16, {16000, 1})},
          {"raw44", form(Form::Kind::kHeaderless, SampleType::kPcm16, {44100, 2})},
          {"float48", form(Form::Kind::kHeaderless, SampleType::kFloat32, {48000, 1})}};
}

// The staged file as samples with full scale at 1.
Sound Staged(const Form& form, WaveFormat format) {
  if (form.kind == Form::Kind::kWave) return ReadSound("work/in");
  Sound sound = {.rate = format.rate, .channels = format.channels};
  if (form.samples == SampleType::kFloat32) {
    for (const float sample : Floats("work/in", 0)) sound.samples.push_back(sample);
  } else {
    for (const short sample : Shorts("work/in", 0)) sound.samples.push_back(sample / 32768.0);
  }
  return sound;
}

class StageKinds : public testing::TestWithParam<Kind> {
 protected:
  TemporaryDirectory m_directory;
};

TEST_P(StageKinds, KeepsLevelAndLength) {
  const Kind& kind = GetParam();
  const double level = -6;
  const int frames = 2 * kind.rate;
  WriteSound("source", {.format = kind.format,
                        .rate = kind.rate,
                        .channels = 2,
                        .samples = Sine(997, level, kind.rate, frames, 2)});
  for (const Target& target : Targets()) {
    SCOPED_TRACE(target.name);
    WaveFormat format = target.form.formats[0];
    if (format.rate == 0) format = {kind.rate, 2};
    const Staging staging = StageOne("source", target.form);
    ASSERT_EQ(FaultText(staging), "");
    const Sound made = Staged(target.form, format);
    EXPECT_EQ(made.rate, format.rate);
    EXPECT_EQ(made.channels, format.channels);
    const double ratio = static_cast<double>(format.rate) / kind.rate;
    const auto length = static_cast<double>(made.samples.size()) / format.channels;
    EXPECT_NEAR(length, frames * ratio, kind.lengthTolerance * ratio + 1);
    for (int channel = 0; channel < format.channels; ++channel) {
      const ToneFit fit = FitTone(made.samples, 997, format.rate, format.channels, channel);
      EXPECT_NEAR(20 * std::log10(fit.amplitude), level, kind.levelTolerance);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, StageKinds, testing::ValuesIn(kKinds),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace host
