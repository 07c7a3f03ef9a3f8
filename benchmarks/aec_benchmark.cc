// Echo cancellation and gain control on ten seconds of generated double talk: processing time over
// audio time.

#include <benchmark/benchmark.h>

#include "bench/aec/routines.h"
#include "bench/enhancement/routines.h"
#include "cpu_timer.h"
#include "support/file_bytes.h"
#include "support/talk.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

constexpr int kRate = 16000;
constexpr double kSeconds = 10;

// "far" and "near", each as ".wav" and ".pcm".
void WritePair() {
  const Samples far = Talk(kRate, kSeconds, 1);
  const Samples near = Sum(Echo(far, kRate, 90), Talk(kRate, kSeconds, 2));
  WriteFile("far.wav", WavBytes({}, far));
  WriteFile("near.wav", WavBytes({}, near));
  WriteFile("far.pcm", SampleBytes(far));
  WriteFile("near.pcm", SampleBytes(near));
  WriteFile("music.wav", WavBytes({}, near));
}

void RealTimeFactor(benchmark::State& state, void (*routine)()) {
  const TemporaryDirectory workspace;
  WritePair();
  double seconds = 0;
  for (auto _ : state) {
    const double once = TimeOf(routine);
    state.SetIterationTime(once);
    seconds += once;
  }
  state.counters["RTF"] = seconds / (kSeconds * static_cast<double>(state.iterations()));
}

#define RTF_OF(name, ...)                                      \
  BENCHMARK_CAPTURE(RealTimeFactor, name, [] { __VA_ARGS__; }) \
      ->UseManualTime()                                        \
      ->Unit(benchmark::kMillisecond)                          \
      ->Iterations(3)

RTF_OF(TestEchoDelayEst, TestEchoDelayEst("far.wav", "near.wav"));
RTF_OF(TestEchoDelayEstAndAEC, TestEchoDelayEstAndAEC("far.wav", "near.wav", "out.wav"));
RTF_OF(TestAECProcess, TestAECProcess("far.pcm", "near.pcm", "out.pcm", 90));
RTF_OF(TestZUAec, TestZUAec("near.wav", "far.wav", "out.wav", true));
RTF_OF(TestZUAECProcess, TestZUAECProcess("far.pcm", "near.wav", "out.wav", 0));
RTF_OF(TestAecDenoiseInternal, TestAecDenoiseInternal("near.wav", "out.wav"));
RTF_OF(TestZUAudioProcessing, TestZUAudioProcessing("far.wav", "near.wav", "out.wav"));
RTF_OF(TestAGCProcess, TestAGCProcess("near.wav", "out.wav"));
RTF_OF(TestSpeexAgc, TestSpeexAgc());

}  // namespace
