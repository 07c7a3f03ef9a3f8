#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "cpu_timer.h"
#include "recording.h"

// What an effect costs at 44.1 kHz stereo, in blocks of 10 ms.

inline constexpr int kFrames = kRecordingRate / 100;
inline constexpr size_t kBlockSamples = 2 * kFrames;
inline constexpr size_t kBlocks = 200;  // Between two looks at the clock.

// Runs `process` over blocks in place, of noise or, where `silenceBefore` says how many seconds, of
// the silence so long after noise. RTF is the share of one core.
template <typename Process>
void MeasureBlocks(benchmark::State& state, size_t silenceBefore, Process process) {
  Noise noise(1);
  std::vector<short> sound(kBlocks * kBlockSamples);
  const auto run = [&] {
    for (size_t block = 0; block < kBlocks; ++block) process(&sound[block * kBlockSamples]);
  };
  const auto fill = [&](bool silent) {
    if (silent) {
      std::fill(sound.begin(), sound.end(), short{0});
    } else {
      FillRecording(noise, sound.data(), sound.size());
    }
  };
  fill(false);
  run();
  for (size_t block = 0; block < silenceBefore * 100; block += kBlocks) {
    fill(true);
    run();
  }
  double seconds = 0;
  for (auto _ : state) {
    fill(silenceBefore > 0);
    const double took = TimeOf(run);
    state.SetIterationTime(took);
    seconds += took;
  }
  state.counters["RTF"] = 100 * seconds / kBlocks / static_cast<double>(state.iterations());
}
