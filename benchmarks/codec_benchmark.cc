// Each codec over whole files, through the drivers that encode and decode them. driver_overhead.sh
// counts what the drivers add.

#include <benchmark/benchmark.h>

#include <vector>

#include "bench/codec/routines.h"
#include "cpu_timer.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/common/wav_writer.h"
#include "noise.h"
#include "support/temporary_directory.h"

namespace {

constexpr int kSeconds = 4;
constexpr int kRawIds[] = {1,  2,  22, 35, 36, 37, 38, 39, 40, 41,
                           42, 43, 44, 45, 46, 50, 51, 53, 55};

// Noise that has lost most of its treble, as music has.
void WriteColouredNoise(const char* name, const AudioStreamFormat& format) {
  Noise noise(1);
  std::vector<short> samples(static_cast<size_t>(format.iSampleRate * format.iNumOfChannels) *
                             kSeconds);
  float low = 0;
  for (short& sample : samples) {
    low += 0.2F * (static_cast<float>(noise.Next()) / 4 - low);
    sample = static_cast<short>(low);
  }
  zuwebrtc::WavWriter writer(name, format.iSampleRate, format.iNumOfChannels);
  writer.WriteSamples(samples.data(), static_cast<unsigned>(samples.size()));
}

// The engine has no codec for an id whose library this build goes without: nothing was encoded.
bool IsEmpty(const char* name) {
  FILE* const file = fopen(name, "rb");
  const bool empty = file == nullptr || fgetc(file) == EOF;
  if (file != nullptr) fclose(file);
  return empty;
}

// Runs `work` on in.wav and in.enc of the id that the benchmark's argument says.
template <typename Work>
void WithStream(benchmark::State& state, Work work) {
  const auto id = static_cast<int>(state.range(0));
  const TemporaryDirectory workspace;
  WriteColouredNoise("in.wav", FormatFromRawCodecId(id));
  newTestZUEncode("in.wav", "in.enc", id, 0, 0, true);
  if (IsEmpty("in.enc")) return state.SkipWithError("built without this codec's library");
  double seconds = 0;
  for (auto _ : state) {
    const double run = TimeOf([&] { work(id); });
    state.SetIterationTime(run);
    seconds += run;
  }
  state.counters["RTF"] = seconds / kSeconds / static_cast<double>(state.iterations());
}

void EncodeFile(benchmark::State& state) {
  WithStream(state, [](int id) { TestZUEncode("in.wav", "out.enc", id, true); });
}

void DecodeFile(benchmark::State& state) {
  WithStream(state, [](int id) { TestZUDecode("in.enc", "out.wav", id, true); });
}

void EachId(benchmark::internal::Benchmark* each) {
  for (const int id : kRawIds) each->Arg(id);
  each->UseManualTime()->Unit(benchmark::kMillisecond);
}
BENCHMARK(EncodeFile)->Apply(EachId);
BENCHMARK(DecodeFile)->Apply(EachId);

}  // namespace
