// What a change of rate costs for each player of a stereo file, beside the most multiply-adds that
// the machine can do: RTF is the share of one core.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "cpu_timer.h"
#include "desktop/dsp/rate/resampler.h"
#include "noise.h"
#include "peak_multiply_add.h"
#include "recording.h"

namespace {

constexpr uint32_t kBlockFrames = 1024;  // As a player reads.
constexpr size_t kBlocks = 100;          // Between two looks at the clock.
constexpr double kTaps = 160;            // For each frame of the higher rate.

// The rates from and to which. Both works in turn, so that a change of the clock rate meets both.
void ChangeOfRate(benchmark::State& state) {
  const auto source = static_cast<uint32_t>(state.range(0));
  const auto target = static_cast<uint32_t>(state.range(1));
  desktop::Resampler resampler(source, 2, target, 2, kBlockFrames);
  Noise noise(1);
  std::vector<short> in(size_t{2} * kBlockFrames);
  std::vector<short> out(size_t{2} * resampler.MaxFramesFor(kBlockFrames));
  FillRecording(noise, in.data(), in.size());
  const double audio = kBlocks * double{kBlockFrames} / source;  // Seconds.
  const double multiplyAdds = 2 * kTaps * audio * std::max(source, target);

  double seconds = 0;
  double peakSeconds = 0;
  double peakDone = 0;
  for (auto _ : state) {
    const double took = TimeOf([&] {
      for (size_t block = 0; block < kBlocks; ++block) {
        resampler.Convert(in.data(), kBlockFrames, out.data());
        benchmark::DoNotOptimize(out.data());
      }
    });
    state.SetIterationTime(took);
    seconds += took;
    peakSeconds += TimeOf([&] {
      peakDone += static_cast<double>(RunPeakMultiplyAdds(static_cast<size_t>(multiplyAdds)));
    });
  }
  const auto rounds = static_cast<double>(state.iterations());
  state.counters["RTF"] = seconds / rounds / audio;
  state.counters["percent_of_peak"] =
      100 * (multiplyAdds * rounds / seconds) / (peakDone / peakSeconds);
}
BENCHMARK(ChangeOfRate)
    ->Args({44100, 48000})
    ->Args({48000, 44100})
    ->Args({16000, 48000})
    ->Args({44099, 48000})
    ->UseManualTime();

}  // namespace
