#include "audio_measures/bandwidth.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

namespace audio_measures {

namespace {

constexpr double kWindow = 0.08;  // s
constexpr double kShare = 0.99;
constexpr double kBelowMaximum = 1e-4;  // 40 dB.
// A window of Hann spreads what is constant over the first two bins.
constexpr size_t kFirstBin = 2;

size_t WindowSamples(int rate) {
  return std::bit_ceil(static_cast<size_t>(std::ceil(rate * kWindow)));
}

}  // namespace

Bandwidth::Bandwidth(int rate)
    : m_rate(rate),
      m_spectrum(Hann(WindowSamples(rate)), WindowSamples(rate)),
      m_block(m_spectrum.WindowSize()),
      m_power(m_spectrum.Bins()) {}

void Bandwidth::Add(std::span<const float> samples) {
  m_any = m_any || !samples.empty();
  while (!samples.empty()) {
    const size_t count = std::min(samples.size(), m_block.size() - m_inBlock);
    std::ranges::copy(samples.first(count),
                      m_block.begin() + static_cast<std::ptrdiff_t>(m_inBlock));
    samples = samples.subspan(count);
    m_inBlock += count;
    if (m_inBlock < m_block.size()) continue;
    Transform();
    std::copy(m_block.begin() + static_cast<std::ptrdiff_t>(m_block.size() / 2), m_block.end(),
              m_block.begin());
    m_inBlock = m_block.size() / 2;
  }
}

void Bandwidth::Transform() {
  const std::span<const float> power = m_spectrum.PowerOf(m_block);
  for (size_t i = kFirstBin; i < power.size(); ++i) {
    const bool once = i + 1 == power.size();
    m_power[i] += static_cast<double>(power[i]) * (once ? 1 : 2);
  }
  m_whole = true;
}

const char* Bandwidth::Fault() const {
  if (!m_any) return kNoSamples;
  const std::span<const float> rest(m_block.data(), m_inBlock);
  const double energy = std::accumulate(m_power.begin(), m_power.end(), 0.0);
  if (!std::isfinite(energy) || !AreFinite(rest)) return kNotFinite;
  if (!m_whole) return kTooShort;
  return energy > 0 ? nullptr : kSilence;
}

Figure Bandwidth::OfEnergy() const {
  if (const char* fault = Fault()) return Unknown(fault);
  double left = kShare * std::accumulate(m_power.begin(), m_power.end(), 0.0);
  size_t bin = 0;
  while (bin + 1 < m_power.size() && left > m_power[bin]) left -= m_power[bin++];
  // A bin stands for the frequencies from half a bin below it to half a bin above; the last one has
  // the lower half alone.
  const double width = bin + 1 == m_power.size() ? 0.5 : 1;
  const double place = static_cast<double>(bin) - 0.5 + width * left / m_power[bin];
  return Known(place * m_rate / static_cast<double>(m_block.size()));
}

Figure Bandwidth::Of40Db() const {
  if (const char* fault = Fault()) return Unknown(fault);
  std::vector<double> density = m_power;
  density.back() *= 2;
  const double limit = *std::ranges::max_element(density) * kBelowMaximum;
  size_t bin = density.size() - 1;
  while (density[bin] < limit) --bin;
  auto place = static_cast<double>(bin);
  if (bin + 1 < density.size() && density[bin + 1] > 0) {
    place += std::log(density[bin] / limit) / std::log(density[bin] / density[bin + 1]);
  }
  return Known(place * m_rate / static_cast<double>(m_block.size()));
}

}  // namespace audio_measures
