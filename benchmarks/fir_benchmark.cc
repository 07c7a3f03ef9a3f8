// The FIR filter as the head-related rendering uses it, beside the most multiply-adds that the
// machine can do.

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "cpu_timer.h"
#include "engine_api/effects/fir_filter.h"
#include "noise.h"
#include "peak_multiply_add.h"

namespace {

constexpr size_t kTaps = 512;
constexpr size_t kCallSamples = 441;  // 10 ms at 44.1 kHz.
constexpr size_t kCalls = 100;        // Between two looks at the clock.

std::vector<float> NoiseFloats(size_t count, float scale) {
  Noise noise(1);
  std::vector<float> floats(count);
  for (float& value : floats) value = static_cast<float>(noise.Next()) * scale;
  return floats;
}

// Both in turn, so that a change of the clock rate meets both.
void FilterOfPeak(benchmark::State& state) {
  const std::vector<float> taps = NoiseFloats(kTaps, 0x1p-20f);
  const std::vector<float> in = NoiseFloats(kCalls * kCallSamples, 0x1p-15f);
  std::vector<float> out(in.size());
  const std::unique_ptr<zuwebrtc::FIRFilter> filter(
      zuwebrtc::FIRFilter::Create(taps.data(), kTaps, kCallSamples));
  constexpr double kMultiplyAdds = kTaps * kCalls * kCallSamples;

  double filterSeconds = 0;
  double peakSeconds = 0;
  double filterDone = 0;
  double peakDone = 0;
  for (auto _ : state) {
    const double seconds = TimeOf([&] {
      for (size_t call = 0; call < kCalls; ++call) {
        filter->Filter(&in[call * kCallSamples], kCallSamples, &out[call * kCallSamples]);
      }
    });
    benchmark::DoNotOptimize(out.data());
    state.SetIterationTime(seconds);
    filterSeconds += seconds;
    filterDone += kMultiplyAdds;
    peakSeconds += TimeOf([&] {
      peakDone += static_cast<double>(RunPeakMultiplyAdds(static_cast<size_t>(kMultiplyAdds)));
    });
  }
  const double filterRate = filterDone / filterSeconds;
  const double peakRate = peakDone / peakSeconds;
  state.counters["multiply_adds_per_s"] = filterRate;
  state.counters["peak_per_s"] = peakRate;
  state.counters["percent_of_peak"] = 100 * filterRate / peakRate;
}
BENCHMARK(FilterOfPeak)->UseManualTime();

}  // namespace
