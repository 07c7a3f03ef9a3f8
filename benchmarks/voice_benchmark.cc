// What the voice effects, the beat tracker and the changers of speed cost at 44.1 kHz stereo: RTF
// is the share of one core, for noise and for the silence after it, which must not cost more.

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>

#include "block_cost.h"
#include "engine_api/effects/audio_accelerate.h"
#include "engine_api/effects/beat_track.h"
#include "engine_api/effects/rate_changer.h"
#include "engine_api/effects/sound_process.h"
#include "engine_api/effects/voice_beautify.h"
#include "engine_api/effects/voice_changer.h"

namespace {

// By then a tail of 2 s has fallen below what a float can tell from zero.
constexpr size_t kSilence = 30;

struct Release {
  template <typename Interface>
  void operator()(Interface* object) const {
    object->Destroy();
  }
};

void ChangeVoice(benchmark::State& state) {
  const std::unique_ptr<IVoiceChangerToolbox> toolbox(
      IVoiceChangerToolbox::Create(kRecordingRate, 2));
  toolbox->SetVoiceEffectOption(static_cast<VoiceEffectOption>(state.range(0)));
  MeasureBlocks(state, static_cast<size_t>(state.range(1)), [&](short* block) {
    short count = kBlockSamples;
    toolbox->Process(block, &count);
  });
}

void BeautifyVoice(benchmark::State& state) {
  const std::unique_ptr<IAudioVoiceBeautify, Release> beautify(IAudioVoiceBeautify::Create());
  beautify->SetEnabled(true);
  beautify->SetVoiceBeautifyOption(static_cast<VoiceBeautifyOption>(state.range(0)), 1, 0);
  MeasureBlocks(state, static_cast<size_t>(state.range(1)), [&](short* block) {
    auto* const samples = reinterpret_cast<unsigned short*>(block);
    beautify->VoiceBeautifyProcess(samples, kBlockSamples, kRecordingRate, 2);
  });
}

void TrackBeats(benchmark::State& state) {
  const std::unique_ptr<IBeatTrack, Release> tracker(CreateBeatTrack(kRecordingRate, 2));
  tracker->Start(0, nullptr, 0);
  MeasureBlocks(state, static_cast<size_t>(state.range(0)),
                [&](short* block) { tracker->Detectbeat(block, kBlockSamples); });
}

void Accelerate(benchmark::State& state) {
  const std::unique_ptr<IAudioAccelerate, Release> accelerate(CreateAudioAccelerate());
  accelerate->SetEnabled(true);
  accelerate->SetAccelerateRate(25);
  MeasureBlocks(state, static_cast<size_t>(state.range(0)), [&](short* block) {
    accelerate->Process(reinterpret_cast<char*>(block), kFrames, kRecordingRate, 2, 16);
  });
}

void ChangeRate(benchmark::State& state) {
  RateChanger changer(true);
  changer.SetEnabled(true);
  changer.SetRatio(static_cast<double>(state.range(0)));
  changer.SetFsAndCh(kRecordingRate, 2);
  std::string out;
  MeasureBlocks(state, static_cast<size_t>(state.range(1)),
                [&](short* block) { changer.Process(block, kFrames, 2, out); });
}

// The stateless functions take 30 ms: every third call, of what was gathered.
template <typename Process>
void MeasureBlocksOf30Ms(benchmark::State& state, Process process) {
  short in[3 * kBlockSamples];
  short out[8192];
  size_t gathered = 0;
  MeasureBlocks(state, static_cast<size_t>(state.range(0)), [&](short* block) {
    memcpy(&in[gathered], block, kBlockSamples * sizeof(short));
    gathered += kBlockSamples;
    if (gathered < std::size(in)) return;
    gathered = 0;
    unsigned outSamples = std::size(out);
    process(in, out, &outSamples);
    benchmark::DoNotOptimize(out);
  });
}

void AccelerateSound(benchmark::State& state) {
  MeasureBlocksOf30Ms(state, [](const short* in, short* out, unsigned* outSamples) {
    AccelerateSoundProcess(kRecordingRate, 2, in, 3 * kBlockSamples, out, outSamples, true);
  });
}

void StretchSound(benchmark::State& state) {
  MeasureBlocksOf30Ms(state, [](const short* in, short* out, unsigned* outSamples) {
    StretchSoundProcess(kRecordingRate, 2, in, 3 * kBlockSamples, out, outSamples);
  });
}

void InMilliseconds(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(ChangeVoice)
    ->ArgsProduct({benchmark::CreateDenseRange(0, 13, 1), {0, kSilence}})
    ->Apply(InMilliseconds);
BENCHMARK(BeautifyVoice)
    ->ArgsProduct({benchmark::CreateDenseRange(0, 5, 1), {0, kSilence}})
    ->Apply(InMilliseconds);
BENCHMARK(TrackBeats)->Arg(0)->Arg(kSilence)->Apply(InMilliseconds);
BENCHMARK(Accelerate)->Arg(0)->Arg(kSilence)->Apply(InMilliseconds);
BENCHMARK(ChangeRate)->ArgsProduct({{1, 2, 3}, {0, kSilence}})->Apply(InMilliseconds);
BENCHMARK(AccelerateSound)->Arg(0)->Arg(kSilence)->Apply(InMilliseconds);
BENCHMARK(StretchSound)->Arg(0)->Arg(kSilence)->Apply(InMilliseconds);

}  // namespace
