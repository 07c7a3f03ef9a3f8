// What the measures cost, in processor time: those against a reference for ten seconds of 48 kHz in
// one channel, those of level for a minute of 48 kHz stereo, as the multiple of real time.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "audio_measures/level_meter.h"
#include "audio_measures/measure.h"

namespace {

constexpr int kRate = 48000;

std::vector<float> Noise(size_t samples, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<float> noise(samples);
  float low = 0;
  for (float& sample : noise) {
    low += 0.3F * (static_cast<float>(random()) / 2147483648.0F - 1 - low);
    sample = 0.2F * low;
  }
  return noise;
}

// The names of the measures from `first` to `last`.
std::vector<std::string_view> NamesBetween(std::string_view first, std::string_view last) {
  std::vector<std::string_view> names;
  for (const audio_measures::Measure& measure : audio_measures::AllMeasures()) {
    if (measure.name == first || !names.empty()) names.push_back(measure.name);
    if (measure.name == last) break;
  }
  return names;
}

// The later of both is 100 samples and a half behind, so that it is interpolated.
void AgainstAReference(benchmark::State& state, const std::vector<std::string_view>& names) {
  const std::vector<float> reference = Noise(size_t{10} * kRate, 1);
  const std::vector<float> other = Noise(reference.size(), 2);
  std::vector<float> output(reference.size());
  for (size_t i = 101; i < output.size(); ++i) {
    output[i] = (reference[i - 100] + reference[i - 101]) / 2 + 0.1F * other[i];
  }
  const audio_measures::Inputs inputs = {.output = {kRate, {output}},
                                         .reference = {kRate, {reference}}};
  for (auto _ : state) benchmark::DoNotOptimize(audio_measures::Compute(inputs, names));
}

void Levels(benchmark::State& state, const std::vector<std::string_view>& names) {
  constexpr int kSeconds = 60;
  const std::vector<float> second = Noise(size_t{2} * kRate, 1);
  for (auto _ : state) {
    audio_measures::LevelMeter meter(2, kRate, 1, names);
    for (int i = 0; i < kSeconds; ++i) meter.Add(second);
    benchmark::DoNotOptimize(meter.Figures());
  }
  state.counters["x_real_time"] = benchmark::Counter(
      kSeconds * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void RegisterAll() {
  const auto unit = benchmark::kMillisecond;
  const auto all = NamesBetween("delay", "estoi");
  benchmark::RegisterBenchmark("AgainstAReference/all", AgainstAReference, all)->Unit(unit);
  for (const std::string_view name : all) {
    benchmark::RegisterBenchmark(("AgainstAReference/" + std::string(name)).c_str(),
                                 AgainstAReference, std::vector{name})
        ->Unit(unit);
  }
  const auto levels = NamesBetween("peak", "bandwidth_40db");
  benchmark::RegisterBenchmark("Levels/all", Levels, levels)->Unit(unit);
  for (const std::string_view name : levels) {
    benchmark::RegisterBenchmark(("Levels/" + std::string(name)).c_str(), Levels, std::vector{name})
        ->Unit(unit);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RegisterAll();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
