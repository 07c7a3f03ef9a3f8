#include "engine_api/effects/drc.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <utility>

#include "desktop/dsp/dynamics/compressor.h"
#include "desktop/dsp/effect_math.h"
#include "desktop/dsp/filters/denormal_guard.h"
#include "desktop/platform/log.h"

namespace {

constexpr int kMaxChannels = 64;
constexpr int kMaxFrames = 3840;  // 10 ms at 384 kHz.

}  // namespace

struct Drc::Impl {
  desktop::Compressor compressor{
      {.threshold = -24, .ratio = 3, .knee = 6, .attackMs = 5, .releaseMs = 150}};
  int samplesPerChannel = 0;
  bool told = false;

  void Prepare(int samples) {
    if (samples == samplesPerChannel) return;
    samplesPerChannel = 0;
    compressor.Reset(100 * samples);
    samplesPerChannel = samples;
  }

  void Tell(const char* text) {
    if (!std::exchange(told, true)) desktop::LogRefusal("Drc: %s", text);
  }
};

Drc::Drc() : m_impl(std::make_unique<Impl>()) {}
Drc::~Drc() = default;

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  if (samples == nullptr || channels < 1 || samplesPerChannel < 1) return;
  if (channels > kMaxChannels || samplesPerChannel > kMaxFrames) {
    m_impl->Tell("more than 64 channels or 384 kHz");
    return;
  }
  try {
    m_impl->Prepare(samplesPerChannel);
  } catch (const std::exception&) {
    m_impl->Tell("no memory");
    return;
  }
  const desktop::DenormalGuard guard;
  for (int i = 0; i < samplesPerChannel; ++i, samples += channels) {
    int peak = 0;
    for (int c = 0; c < channels; ++c) peak = std::max(peak, std::abs(int{samples[c]}));
    const float gain = m_impl->compressor.Gain(static_cast<float>(peak) / 32768);
    for (int c = 0; c < channels; ++c) {
      samples[c] = desktop::ToSample(gain * samples[c]);
    }
  }
}
