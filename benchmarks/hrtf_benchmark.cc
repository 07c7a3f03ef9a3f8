// The whole head-related rendering routine over a minute of noise, files included.

#include <benchmark/benchmark.h>

#include "bench/effects/routines.h"
#include "catalogue/hrtf_files.h"
#include "cpu_timer.h"
#include "files/path_map.h"
#include "recording.h"
#include "support/temporary_directory.h"

namespace {

void WholeTestHrtf(benchmark::State& state) {
  constexpr int kSeconds = 60;
  const TemporaryDirectory workspace;
  static host::FileActivity activity;
  host::MapOpenedFiles(&activity);
  if (!WriteRecording(harness::kHrtfInput.name.data(), kSeconds)) {
    state.SkipWithError("the input cannot be written");
    return;
  }
  double seconds = 0;
  for (auto _ : state) {
    const double run = TimeOf([] { TestHRTF(); });
    state.SetIterationTime(run);
    seconds += run;
  }
  state.counters["RTF"] = seconds / kSeconds / static_cast<double>(state.iterations());
}
BENCHMARK(WholeTestHrtf)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
