// A compressor that takes the place of the desktop engine's: all that engine_api/effects/drc.h
// declares, and the version of the interface that it was built on.

#include <audio_engine/engine_api/common/interface_version.h>
#include <audio_engine/engine_api/effects/drc.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

AUDIO_ENGINE_INTERFACE_VERSION;

namespace {

constexpr double kThreshold = 2000;       // About -24 dBFS.
constexpr double kSlope = 0.5 - 1;        // Above it, 2 dB in give 1 dB out.
constexpr double kReleasePerBlock = 0.9;  // Of the envelope, in 10 ms.

}  // namespace

// What stands between two blocks.
struct Drc::Impl {
  double envelope = 0;
};

Drc::Drc() : m_impl(std::make_unique<Impl>()) {}
Drc::~Drc() = default;

void Drc::Process(short* samples, int channels, int samplesPerChannel) {
  if (channels < 1 || samplesPerChannel < 1) return;
  const double release = std::pow(kReleasePerBlock, 1.0 / samplesPerChannel);
  for (int i = 0; i < samplesPerChannel; ++i) {
    short* const frame = samples + static_cast<long>(i) * channels;
    int peak = 0;
    for (int channel = 0; channel < channels; ++channel) {
      peak = std::max(peak, std::abs(int{frame[channel]}));
    }
    m_impl->envelope = std::max<double>(peak, m_impl->envelope * release);
    if (m_impl->envelope <= kThreshold) continue;
    const double gain = std::pow(m_impl->envelope / kThreshold, kSlope);
    for (int channel = 0; channel < channels; ++channel) {
      frame[channel] = static_cast<short>(std::lround(frame[channel] * gain));
    }
  }
}
