#include "audio_measures/true_peak.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace audio_measures {

namespace {

constexpr int kMinRate = 16;       // Hz
constexpr int kMaxRate = 2822400;  // Hz
constexpr int kMaxChannels = 64;
constexpr int kHalf = 24;  // Taps of the windowed sinc on either side of its middle.

// What a vector register of any machine holds. The compiler does not find this by itself.
using Floats = float __attribute__((vector_size(16)));
constexpr size_t kLanes = sizeof(Floats) / sizeof(float);

// So many frames are interpolated at a time, so that what they need stays in the cache.
constexpr size_t kRun = 4096;

int Oversampling(int rate) {
  if (rate < 96000) return 4;
  return rate < 192000 ? 2 : 1;
}

// The weight of the sinc at a place that lies so many oversampled steps after its middle.
float Weight(int step, int oversampling) {
  const double angle = M_PI * step / oversampling;
  const double window = 0.5 * (1 + std::cos(M_PI * step / kHalf));
  return static_cast<float>(step == 0 ? 1 : std::sin(angle) / angle * window);
}

Floats Load(const float* from) {
  Floats value;
  memcpy(&value, from, sizeof value);
  return value;
}

Floats Larger(const Floats& a, const Floats& b) { return a > b ? a : b; }

float Highest(const Floats& value) {
  float largest = 0;
  for (size_t lane = 0; lane < kLanes; ++lane) largest = std::max(largest, value[lane]);
  return largest;
}

float LargestOf(std::span<const float> samples) {
  Floats largest = {};
  size_t i = 0;
  for (; i + kLanes <= samples.size(); i += kLanes) {
    const Floats value = Load(samples.data() + i);
    largest = Larger(largest, Larger(value, -value));
  }
  float peak = Highest(largest);
  for (; i < samples.size(); ++i) peak = std::max(peak, std::fabs(samples[i]));
  return peak;
}

// The largest magnitude of `frames` values of each of `kPhases` filters, each the sum of the
// samples from its place on times the weights. All filters take a sample while it is in a register,
// and their sums do not wait for each other.
template <size_t kPhases>
float Largest(const float* samples, size_t frames, std::span<const float> weights) {
  constexpr size_t kWide = 2;  // Registers of frames at a time.
  const size_t taps = weights.size() / kPhases;
  Floats largest = {};
  size_t i = 0;
  for (; i + kWide * kLanes <= frames; i += kWide * kLanes) {
    Floats sums[kPhases][kWide] = {};
    for (size_t tap = 0; tap < taps; ++tap) {
      const Floats first = Load(samples + i + tap);
      const Floats second = Load(samples + i + tap + kLanes);
      for (size_t phase = 0; phase < kPhases; ++phase) {
        const float weight = weights[phase * taps + tap];
        sums[phase][0] += first * weight;
        sums[phase][1] += second * weight;
      }
    }
    for (const auto& ofPhase : sums) {
      for (const Floats& sum : ofPhase) largest = Larger(largest, Larger(sum, -sum));
    }
  }
  float peak = Highest(largest);
  for (; i < frames; ++i) {
    for (size_t phase = 0; phase < kPhases; ++phase) {
      float sum = 0;
      for (size_t tap = 0; tap < taps; ++tap) sum += samples[i + tap] * weights[phase * taps + tap];
      peak = std::max(peak, std::fabs(sum));
    }
  }
  return peak;
}

// Between the samples; there are the filters of an oversampling by 4, by 2 or none.
float LargestBetween(const float* samples, size_t frames, std::span<const float> weights,
                     size_t taps) {
  if (weights.empty()) return 0;
  return weights.size() == taps ? Largest<1>(samples, frames, weights)
                                : Largest<3>(samples, frames, weights);
}

}  // namespace

TruePeak::TruePeak(int channels, int rate)
    : m_valid(rate >= kMinRate && rate <= kMaxRate && channels > 0 && channels <= kMaxChannels) {
  if (!m_valid) return;
  const int factor = Oversampling(rate);
  if (factor > 1) m_taps = static_cast<size_t>(2 * kHalf / factor);
  for (int phase = 1; phase < factor; ++phase) {
    for (int step = kHalf - factor + phase; step > -kHalf; step -= factor) {
      m_weights.push_back(Weight(step, factor));
    }
  }
  m_channels.resize(static_cast<size_t>(channels));
  for (Channel& channel : m_channels) channel.samples.resize(Before() + kRun);
}

void TruePeak::Add(std::span<const float> frames) {
  if (!m_valid || frames.empty()) return;
  m_any = true;
  m_finite = m_finite && AreFinite(frames);
  if (!m_finite) return;
  const size_t stride = m_channels.size();
  for (size_t c = 0; c < stride; ++c) {
    Channel& channel = m_channels[c];
    channel.last = 0;
    for (size_t first = c; first < frames.size(); first += kRun * stride) {
      const auto run = frames.subspan(first, std::min(kRun * stride, frames.size() - first));
      AddRun(run, channel);
    }
    channel.peak = std::max(channel.peak, channel.last);
  }
}

// samples: from one of the channel on, of all channels.
void TruePeak::AddRun(std::span<const float> samples, Channel& channel) {
  const size_t stride = m_channels.size();
  const size_t count = (samples.size() + stride - 1) / stride;
  float* const run = channel.samples.data() + Before();
  if (stride == 1) {
    std::ranges::copy(samples, run);
  } else {
    for (size_t i = 0; i < count; ++i) run[i] = samples[i * stride];
  }
  channel.last = std::max(channel.last, LargestOf({run, count}));
  channel.last =
      std::max(channel.last, LargestBetween(channel.samples.data(), count, m_weights, m_taps));
  std::copy_n(channel.samples.data() + count, Before(), channel.samples.data());
}

Figure TruePeak::Peak(int channel) const { return Read(channel, &Channel::peak); }

Figure TruePeak::LastPeak(int channel) const { return Read(channel, &Channel::last); }

Figure TruePeak::Read(int channel, float Channel::*peak) const {
  if (!m_valid) return Unknown("a rate or channel count that is out of range");
  if (!m_any) return Unknown(kNoSamples);
  if (!m_finite) return Unknown(kNotFinite);
  if (channel < 0 || static_cast<size_t>(channel) >= m_channels.size()) {
    return Unknown("no such channel");
  }
  const float value = m_channels[static_cast<size_t>(channel)].*peak;
  return value > 0 ? Known(20 * std::log10(static_cast<double>(value))) : Unknown(kSilence);
}

}  // namespace audio_measures
