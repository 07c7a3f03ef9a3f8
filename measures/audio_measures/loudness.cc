#include "audio_measures/loudness.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace audio_measures {

namespace {

constexpr int kMinRate = 16;       // Hz
constexpr int kMaxRate = 2822400;  // Hz
constexpr int kMaxChannels = 64;
constexpr double kOffset = -0.691;     // Of the recommendation, so that 1 kHz at 0 dBFS has -3.01.
constexpr double kAbsoluteGate = -70;  // LUFS
constexpr double kBelowMean = 0.1;     // 10 LU,
constexpr double kBelowMeanRange = 0.01;  // and 20.
constexpr double kSurround = 1.41;

// How much a channel of so many counts.
double Weight(size_t channel, size_t channels) {
  if (channels == 4) return channel >= 2 ? kSurround : 1;
  if (channels == 5) return channel >= 3 ? kSurround : 1;
  if (channel >= 6 || channel == 3) return 0;
  return channel >= 4 ? kSurround : 1;
}

double LoudnessOf(double power) { return 10 * std::log10(power) + kOffset; }

double Mean(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

// Takes away what is below a share of the mean.
void GateByMean(double share, std::vector<double>& powers) {
  const double least = share * Mean(powers);
  std::erase_if(powers, [least](double power) { return power < least; });
}

}  // namespace

Loudness::Loudness(int channels, int rate)
    : m_valid(rate >= kMinRate && rate <= kMaxRate && channels > 0 && channels <= kMaxChannels),
      m_pairs(m_valid ? (static_cast<size_t>(channels) + 1) / 2 : 0, KWeighting(rate)),
      m_channels(m_valid ? static_cast<size_t>(channels) : 0),
      m_tenth((static_cast<size_t>(std::max(rate, 0)) + 5) / 10) {}

void Loudness::Add(std::span<const float> frames) {
  if (!m_valid || frames.empty()) return;
  m_finite = m_finite && AreFinite(frames);
  if (!m_finite) return;
  for (size_t count = frames.size() / m_channels; count > 0;) {
    const size_t some = std::min(count, m_tenth - m_inTenth);
    for (size_t pair = 0; pair < m_pairs.size(); ++pair) {
      const size_t channel = 2 * pair;
      m_pairs[pair].Add(frames.data() + channel, some, m_channels, channel + 1 < m_channels);
    }
    frames = frames.subspan(some * m_channels);
    count -= some;
    m_inTenth += some;
    if (m_inTenth == m_tenth) EndTenth();
  }
}

void Loudness::EndTenth() {
  double power = 0;
  for (size_t pair = 0; pair < m_pairs.size(); ++pair) {
    const KWeighting::Sums sums = m_pairs[pair].Take();
    power += Weight(2 * pair, m_channels) * sums.first;
    power += Weight(2 * pair + 1, m_channels) * sums.second;
  }
  m_powers.push_back(power);
  m_inTenth = 0;
}

std::vector<double> Loudness::Gated(size_t tenths, size_t step) const {
  const double least = std::pow(10, (kAbsoluteGate - kOffset) / 10);
  const auto length = static_cast<std::ptrdiff_t>(tenths);
  std::vector<double> powers;
  for (size_t i = 0; i + tenths <= m_powers.size(); i += step) {
    const auto first = m_powers.begin() + static_cast<std::ptrdiff_t>(i);
    const double power =
        std::accumulate(first, first + length, 0.0) / static_cast<double>(tenths * m_tenth);
    if (power >= least) powers.push_back(power);
  }
  return powers;
}

// Why there is no figure of what lasts `tenths` of a second at least, or nullptr.
const char* Loudness::Fault(size_t tenths) const {
  if (!m_valid) return "a rate or channel count that is out of range";
  if (!m_finite) return kNotFinite;
  if (m_powers.empty() && m_inTenth == 0) return kNoSamples;
  return m_powers.size() < tenths ? kTooShort : nullptr;
}

Figure Loudness::Integrated() const {
  if (const char* fault = Fault(4)) return Unknown(fault);
  std::vector<double> powers = Gated(4, 1);
  if (powers.empty()) return Unknown(kBelowGate);
  GateByMean(kBelowMean, powers);
  return Known(LoudnessOf(Mean(powers)));
}

Figure Loudness::Range() const {
  if (const char* fault = Fault(30)) return Unknown(fault);
  const Figure integrated = Integrated();
  if (!integrated.value) return integrated;
  std::vector<double> powers = Gated(30, 10);
  if (powers.empty()) return Known(0);
  GateByMean(kBelowMeanRange, powers);
  std::ranges::sort(powers);
  const auto at = [&powers](double share) {
    return powers[static_cast<size_t>(std::lround(share * static_cast<double>(powers.size() - 1)))];
  };
  return Known(LoudnessOf(at(0.95)) - LoudnessOf(at(0.1)));
}

}  // namespace audio_measures
