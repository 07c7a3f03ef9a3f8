// What each effect costs at 44.1 kHz stereo, in blocks of 10 ms: RTF is the share of one core, for
// noise and for the silence after it, which must not cost more.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "block_cost.h"
#include "engine_api/effects/audio_dsp_processor.h"
#include "engine_api/effects/audio_karaoke_effect_module.h"
#include "engine_api/effects/audio_music_detector.h"
#include "engine_api/effects/drc.h"
#include "engine_api/effects/equalizer.h"
#include "engine_api/effects/multiband_drc.h"

namespace {

// By then a tail of 2 s has fallen below what a float can tell from zero.
constexpr int64_t kSilence = 30;

// The first argument of a benchmark: seconds of silence since the noise, 0 for the noise itself.
size_t SilenceBefore(const benchmark::State& state) { return static_cast<size_t>(state.range(0)); }

// The frame is filled and read back, as a routine does.
template <typename Module>
void MeasureFrames(benchmark::State& state, Module& module) {
  zuwebrtc::AudioFrame frame;
  frame.sample_rate_hz_ = kRecordingRate;
  frame.num_channels_ = 2;
  frame.samples_per_channel_ = kFrames;
  MeasureBlocks(state, SilenceBefore(state), [&](short* block) {
    std::copy_n(block, kBlockSamples, frame.data_);
    module.Process(frame);
    std::copy_n(frame.data_, kBlockSamples, block);
  });
}

void Equalizer(benchmark::State& state) {
  const auto destroy = [](IEqualizer* equalizer) { equalizer->Destroy(); };
  const std::unique_ptr<IEqualizer, decltype(destroy)> equalizer(CreateEqualizer());
  for (int band = 0; band < 11; ++band) equalizer->SetEqGain(band, band % 2 == 0 ? 6.0f : -6.0f);
  equalizer->SetEnabled(true);
  MeasureBlocks(state, SilenceBefore(state), [&](short* block) {
    equalizer->Process(reinterpret_cast<char*>(block), kFrames, kRecordingRate, 2, 2);
  });
}

void Reverberation(benchmark::State& state) {
  CAudioDspProcessor processor;
  processor.SetReverbExEnable(true);
  MeasureBlocks(state, SilenceBefore(state), [&](short* block) {
    processor.Process(reinterpret_cast<char*>(block), kFrames, kRecordingRate, 2, 16);
  });
}

// Equaliser, reverberation, compressor and limiter together.
void KaraokeChain(benchmark::State& state) {
  AudioKaraokeEffectModule module;
  EqGains gains = {0, -5.7f, 0, -4.6f, 0, 4, 4, 3, 2, 1, 1.3f};
  module.EnableDrc(true);
  module.SetEqualizerEnable(true);
  module.SetEqGains(gains, true);
  module.EnableReverbFv3(true);
  module.SetReverbFv3Param({3.6f, -17.7f, 3, 0.8f, 0.6f, 0, 0.2f, 2.1f, 0.6f, 16});
  module.EnableLimiter(true);
  module.SetLimiterParameter({0, -2, 7, 90, 0, 1, 1, 0, 0, 1, 0});
  MeasureFrames(state, module);
}

void Compressor(benchmark::State& state) {
  Drc drc;
  MeasureBlocks(state, SilenceBefore(state), [&](short* block) { drc.Process(block, 2, kFrames); });
}

void MultibandCompressor(benchmark::State& state) {
  MultibandDrc drc;
  drc.Init();
  MeasureFrames(state, drc);
}

void MusicDetector(benchmark::State& state) {
  AudioMusicDetector detector;
  detector.Enable(true);
  MeasureFrames(state, detector);
}

BENCHMARK(Equalizer)->Arg(0)->Arg(kSilence)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Reverberation)->Arg(0)->Arg(kSilence)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(KaraokeChain)->Arg(0)->Arg(kSilence)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Compressor)->Arg(0)->Arg(kSilence)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(MultibandCompressor)
    ->Arg(0)
    ->Arg(kSilence)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(MusicDetector)->Arg(0)->Arg(kSilence)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
