#include "engine_api/effects/multiband_drc.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "desktop/dsp/dynamics/compressor.h"
#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/dsp/filters/linkwitz_riley.h"
#include "desktop/effects/effect_gate.h"

namespace {

constexpr int kBands = 3;
constexpr double kLowEdge = 200;    // Hz.
constexpr double kHighEdge = 3000;  // Hz.

}  // namespace

struct MultibandDrc::Impl {
  desktop::ThreeBandSplit split;
  desktop::Compressor compressor[kBands] = {
      desktop::Compressor(
          {.threshold = -24, .ratio = 3, .knee = 0, .attackMs = 10, .releaseMs = 200}),
      desktop::Compressor(
          {.threshold = -24, .ratio = 3, .knee = 0, .attackMs = 5, .releaseMs = 150}),
      desktop::Compressor(
          {.threshold = -24, .ratio = 3, .knee = 0, .attackMs = 2, .releaseMs = 80})};
  desktop::EffectGate gate{"MultibandDrc"};
  int sampleRate = 0;
  int channels = 0;

  void Prepare(int rate, int channelCount) {
    if (rate == sampleRate && channelCount == channels) return;
    sampleRate = 0;
    split.Reset(kLowEdge, kHighEdge, rate);
    for (desktop::Compressor& band : compressor) band.Reset(rate);
    sampleRate = rate;
    channels = channelCount;
  }

  void Run(float* const* rows, size_t frames) {
    for (size_t i = 0; i < frames; ++i) {
      double bands[desktop::kMaxEffectChannels][kBands];
      double level[kBands] = {};
      for (int c = 0; c < channels; ++c) {
        split.Run(c, rows[c][i], bands[c]);
        for (int b = 0; b < kBands; ++b) level[b] = std::max(level[b], std::abs(bands[c][b]));
      }
      double gain[kBands];
      for (int b = 0; b < kBands; ++b) {
        gain[b] = compressor[b].Gain(static_cast<float>(level[b]));
      }
      for (int c = 0; c < channels; ++c) {
        rows[c][i] = static_cast<float>(gain[0] * bands[c][0] + gain[1] * bands[c][1] +
                                        gain[2] * bands[c][2]);
      }
    }
  }
};

MultibandDrc::MultibandDrc() : m_impl(std::make_unique<Impl>()) {}
MultibandDrc::~MultibandDrc() = default;

void MultibandDrc::Init() { m_impl->sampleRate = 0; }

void MultibandDrc::Process(zuwebrtc::AudioFrame& frame) {
  if (!m_impl->gate.Passes(frame)) return;
  try {
    m_impl->Prepare(frame.sample_rate_hz_, frame.num_channels_);
  } catch (const std::exception&) {
    m_impl->gate.TellNoMemory();
    return;
  }
  const desktop::DenormalGuard guard;
  desktop::ProcessInBlocks<int16_t>(
      reinterpret_cast<char*>(frame.data_), frame.samples_per_channel_, frame.num_channels_,
      [this](float* const* rows, size_t frames) { m_impl->Run(rows, frames); });
}
