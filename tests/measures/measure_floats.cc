// What the library measures of headerless files of floats, for a comparison with figures that were
// worked out elsewhere.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "audio_measures/aligned_pair.h"
#include "audio_measures/compute.h"
#include "audio_measures/intelligibility.h"
#include "audio_measures/measure.h"

namespace {

using audio_measures::AlignedPair;

// Nothing where there is no such file.
template <typename T>
std::optional<std::vector<T>> ReadIfThere(const std::string& name) {
  FILE* const file = fopen(name.c_str(), "rb");
  if (file == nullptr) return std::nullopt;
  std::vector<T> values;
  T block[4096];
  while (const size_t count = fread(block, sizeof(T), 4096, file)) {
    values.insert(values.end(), block, block + count);
  }
  fclose(file);
  return values;
}

std::vector<float> Read(const std::string& name) {
  std::optional<std::vector<float>> samples = ReadIfThere<float>(name);
  if (!samples) {
    fprintf(stderr, "%s cannot be read\n", name.c_str());
    exit(2);
  }
  return std::move(*samples);
}

audio_measures::Signal SignalOf(const std::optional<std::vector<float>>& samples, int rate) {
  if (!samples) return {};
  return {rate, {*samples}};
}

void Write(const std::string& name, const std::vector<float>& samples) {
  FILE* const file = fopen(name.c_str(), "wb");
  if (file == nullptr ||
      fwrite(samples.data(), sizeof(float), samples.size(), file) != samples.size() ||
      fclose(file) != 0) {
    fprintf(stderr, "%s cannot be written\n", name.c_str());
    exit(2);
  }
}

}  // namespace

// measure_floats FOLDER RATE: of reference.f32 and output.f32 in the folder, of one channel each.
// Prints "name value" for each figure, "name - reason" where there is none, and leaves what the
// figures against the reference are of: aligned_reference.f32, aligned_output.f32, and both at the
// rate of stoi as 10k_reference.f32 and 10k_output.f32. Where they are there input.f32, far.f32,
// near.f32 and the seconds of beats.f64 and true_beats.f64 are measured too.
int main(int argc, char** argv) {
  const int rate = argc == 3 ? std::atoi(argv[2]) : 0;
  if (rate <= 0) {
    fprintf(stderr, "usage: measure_floats FOLDER RATE\n");
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  const std::vector<float> reference = Read(folder + "reference.f32");
  const std::vector<float> output = Read(folder + "output.f32");
  const auto input = ReadIfThere<float>(folder + "input.f32");
  const auto far = ReadIfThere<float>(folder + "far.f32");
  const auto near = ReadIfThere<float>(folder + "near.f32");
  const auto beats = ReadIfThere<double>(folder + "beats.f64");
  const auto trueBeats = ReadIfThere<double>(folder + "true_beats.f64");
  const audio_measures::Inputs inputs = {.output = {rate, {output}},
                                         .reference = {rate, {reference}},
                                         .far = SignalOf(far, rate),
                                         .near = SignalOf(near, rate),
                                         .input = SignalOf(input, rate),
                                         .beats = beats,
                                         .trueBeats = trueBeats};
  std::vector<std::string_view> names;
  for (const audio_measures::Measure& measure : audio_measures::AllMeasures()) {
    if (measure.version > 0) names.push_back(measure.name);
  }
  for (const auto& [name, channel, figure] : audio_measures::Compute(inputs, names)) {
    if (channel.value_or(0) != 0) continue;
    const int size = static_cast<int>(name.size());
    if (figure.value) {
      printf("%.*s %.17g\n", size, name.data(), *figure.value);
    } else {
      printf("%.*s - %s\n", size, name.data(), figure.reason);
    }
  }
  const AlignedPair pair = audio_measures::AlignPair(reference, output, rate, inputs.searchSeconds);
  Write(folder + "aligned_reference.f32", pair.reference);
  Write(folder + "aligned_output.f32", pair.signal);
  Write(folder + "10k_reference.f32", audio_measures::AtIntelligibilityRate(pair.reference, rate));
  Write(folder + "10k_output.f32", audio_measures::AtIntelligibilityRate(pair.signal, rate));
  return 0;
}
