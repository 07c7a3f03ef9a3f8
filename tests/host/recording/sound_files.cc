#include "host/recording/sound_files.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <numbers>

#include "support/file_bytes.h"

namespace host {

void WriteSound(const std::string& path, const Sound& sound) {
  SF_INFO info = {};
  info.samplerate = sound.rate;
  info.channels = sound.channels;
  info.format = sound.format;
  SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
  ASSERT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
  sf_command(file, SFC_SET_CLIPPING, nullptr, SF_TRUE);
  const auto count = static_cast<sf_count_t>(sound.samples.size());
  EXPECT_EQ(sf_write_double(file, sound.samples.data(), count), count) << path;
  sf_close(file);
}

Sound ReadSound(const std::string& path) {
  SF_INFO info = {};
  SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) {
    ADD_FAILURE() << path << ": " << sf_strerror(nullptr);
    return {};
  }
  Sound sound = {.format = info.format, .rate = info.samplerate, .channels = info.channels};
  sound.samples.resize(static_cast<size_t>(info.frames * info.channels));
  sf_readf_double(file, sound.samples.data(), info.frames);
  sf_close(file);
  return sound;
}

std::vector<double> Sine(double frequency, double level, int rate, int frames, int channels) {
  std::vector<double> samples;
  const double amplitude = std::pow(10.0, level / 20);
  for (int i = 0; i < frames; ++i) {
    const double value = amplitude * std::sin(2 * std::numbers::pi * frequency * i / rate);
    samples.insert(samples.end(), static_cast<size_t>(channels), value);
  }
  return samples;
}

namespace {

template <typename T>
std::vector<T> Samples(const std::string& path, size_t from) {
  const std::string bytes = ReadFile(path).substr(from);
  std::vector<T> samples(bytes.size() / sizeof(T));
  memcpy(samples.data(), bytes.data(), samples.size() * sizeof(T));
  return samples;
}

}  // namespace

std::vector<short> Shorts(const std::string& path, size_t from) {
  return Samples<short>(path, from);
}

std::vector<float> Floats(const std::string& path, size_t from) {
  return Samples<float>(path, from);
}

Staging StageOne(const std::string& source, const Form& form, const StageWishes& wishes) {
  std::filesystem::create_directories("work");
  const StageInput input = {.source = source, .place = "in", .form = form};
  return StageRecordings("work", std::span(&input, 1), wishes, [] { return true; });
}

Form WaveForm(WaveFormat format) { return {.kind = Form::Kind::kWave, .formats = {format}}; }

Form RawShorts(WaveFormat format) { return {.kind = Form::Kind::kHeaderless, .formats = {format}}; }

std::string StepNames(const Staging& staging) {
  std::string names;
  for (const StagedFile& file : staging.files) {
    if (!names.empty()) names += "; ";
    for (size_t i = 0; i < file.steps.size(); ++i) {
      names += (i > 0 ? ", " : "") + file.steps[i].name;
    }
  }
  return names;
}

std::string FaultText(const Staging& staging) { return staging.fault ? staging.fault->text : ""; }

}  // namespace host
