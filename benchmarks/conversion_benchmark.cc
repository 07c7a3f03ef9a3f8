// The sample converters, beside memcpy moving as many bytes: 2 for each short and 4 for each float,
// read or written. From a block of 10 ms, in the first-level cache, to minutes, in main memory.

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "cpu_timer.h"
#include "harness/sample_conversion.h"
#include "noise.h"

namespace {

// Runs `convert` and a memcpy that moves as much in turn, so that a change of the clock rate meets
// both.
template <typename Convert>
void CompareWithMemcpy(benchmark::State& state, Convert convert) {
  const auto samples = static_cast<size_t>(state.range(0));
  const size_t bytes = samples * (sizeof(short) + sizeof(float));
  const size_t rounds = 1 + (size_t{1} << 18) / samples;  // Between two looks at the clock.
  std::vector<char> from(bytes / 2, 1);
  std::vector<char> to(bytes / 2);

  double convertSeconds = 0;
  double copySeconds = 0;
  for (auto _ : state) {
    const double seconds = TimeOf([&] {
      for (size_t round = 0; round < rounds; ++round) convert();
    });
    state.SetIterationTime(seconds);
    convertSeconds += seconds;
    copySeconds += TimeOf([&] {
      for (size_t round = 0; round < rounds; ++round) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
      }
    });
  }
  const auto moved = static_cast<double>(state.iterations()) * static_cast<double>(rounds * bytes);
  state.counters["bytes_per_s"] = moved / convertSeconds;
  state.counters["memcpy_bytes_per_s"] = moved / copySeconds;
  state.counters["percent_of_memcpy"] = 100 * copySeconds / convertSeconds;
}

std::vector<short> NoiseSamples(size_t count) {
  Noise noise(2);
  std::vector<short> samples(count);
  for (short& sample : samples) sample = noise.Next();
  return samples;
}

void ToFloat(benchmark::State& state) {
  const std::vector<short> in = NoiseSamples(static_cast<size_t>(state.range(0)));
  std::vector<float> out(in.size());
  CompareWithMemcpy(state, [&] {
    ConvertToFloatForWebrtc(in.data(), out.data(), static_cast<int>(in.size()));
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}

void ToShort(benchmark::State& state) {
  const std::vector<short> samples = NoiseSamples(static_cast<size_t>(state.range(0)));
  const std::vector<float> in(samples.begin(), samples.end());
  std::vector<short> out(in.size());
  CompareWithMemcpy(state, [&] {
    ConvertToShortForWebrtc(in.data(), out.data(), static_cast<int>(in.size()));
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}

BENCHMARK(ToFloat)->Arg(480)->Arg(4096)->Arg(1 << 16)->Arg(1 << 20)->Arg(1 << 25)->UseManualTime();
BENCHMARK(ToShort)->Arg(480)->Arg(4096)->Arg(1 << 16)->Arg(1 << 20)->Arg(1 << 25)->UseManualTime();

}  // namespace
