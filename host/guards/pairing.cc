#include "guards/pairing.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "audio_measures/delay_finder.h"
#include "audio_measures/phase_fit.h"
#include "guards/coarse_delay.h"
#include "guards/places.h"

namespace host {

namespace {

constexpr int64_t kStretches = 6;     // That a delay is looked for in,
constexpr int64_t kFits = 12;         // and that it is checked in.
constexpr size_t kFit = 16384;        // Frames of the latter.
constexpr double kLikely = 0.2;       // Correlation from which the delay is believed.
constexpr double kPlain = 0.5;        // The same of one that was found at a lower rate.
constexpr double kLeastWidth = 1e-4;  // Power of the difference of two channels against their sum
constexpr double kLeastDifference = 1e-12;  // and by itself, so that it is no rounding.
constexpr double kTurned = -0.5;            // Correlation of the differences of swapped channels.
constexpr double kUpright = 0.3;            // That of their sums.

// What two signals have in common, from sums over any number of samples.
struct Common {
  double product = 0;
  double first = 0;
  double second = 0;

  void Add(double a, double b) {
    product += a * b;
    first += a * a;
    second += b * b;
  }
  double Correlation() const {
    const double both = first * second;
    return both > 0 ? product / std::sqrt(both) : 0;
  }
};

}  // namespace

Pairing::Pairing(InputStudy& input, const Signal& output, const GuardRules& rules)
    : m_study(input),
      m_input(input.Input(), output.rate),
      m_output(output, output.rate),
      m_rate(output.rate),
      m_channels(output.channels),
      m_least(-std::llround(rules.mostAdvance * m_rate)),
      m_most(std::llround(rules.mostDelay * m_rate)),
      m_alike(input.Input().channels == output.channels) {
  std::optional<int64_t> lag;
  for (int channel = 0; channel < m_channels; ++channel) {
    m_matches.push_back(MatchOf(channel, Source(channel)));
    if (!lag && m_matches.back().known) lag = m_matches.back().lag;
  }
  if (m_channels != 2 || !m_alike) return;
  Match crossed[2];
  if (!lag) {
    for (const int channel : {0, 1}) {
      crossed[channel] = MatchOf(channel, 1 - channel);
      if (!lag && crossed[channel].known) lag = crossed[channel].lag;
    }
  }
  m_swapped = lag && AreSwapped(*lag);
  if (!m_swapped) return;
  for (const int channel : {0, 1})
    m_matches[static_cast<size_t>(channel)] = MatchOf(channel, Source(channel));
}

int Pairing::Source(int channel) const {
  if (!m_alike) return Track::kMean;
  return m_swapped ? 1 - channel : channel;
}

Match Pairing::MatchOf(int channel, int source) const {
  const auto coarse = CoarseDelay({m_input, source, m_output, channel, m_rate}, m_least, m_most);
  if (coarse) {
    const Match match = MatchAt(channel, source, *coarse, 1, audio_measures::PhaseFit::kBlock);
    if (match.known && match.correlation >= kPlain) return match;
  }
  const int64_t frames = std::max(m_input.Frames(), m_output.Frames());
  audio_measures::DelayFinder finder(m_least, m_most, static_cast<uint64_t>(frames));
  std::vector<float> in(finder.ReferenceFrames());
  std::vector<float> out(finder.SignalFrames());
  for (const int64_t place :
       Places(m_input.Frames(), static_cast<int64_t>(in.size()), kStretches)) {
    m_input.Read(source, place, in);
    m_output.Read(channel, place + m_least, out);
    finder.Add(in, out);
  }
  const auto peak = finder.Find();
  if (!peak || peak->sharpness < audio_measures::DelayFinder::kClear) return {};
  return MatchAt(channel, source, peak->lag, peak->polarity, kFit);
}

Match Pairing::MatchAt(int channel, int source, int64_t lag, int polarity, size_t frames) const {
  audio_measures::PhaseFit phases;
  std::vector<float> out(frames);
  for (const int64_t place : Places(m_input.Frames(), static_cast<int64_t>(frames), kFits)) {
    m_output.Read(channel, place + lag, out);
    AddAt(source, place, out, phases);
  }
  const auto fit = phases.Find(polarity);
  if (!fit || std::fabs(fit->correlation) < kLikely) return {};
  return {.known = true, .lag = lag + std::llround(fit->later), .correlation = fit->correlation};
}

void Pairing::AddAt(int source, int64_t place, std::span<const float> out,
                    audio_measures::PhaseFit& phases) const {
  const InputStudy::Stretch stretch = {m_rate, source, place};
  const bool isKept = out.size() == audio_measures::PhaseFit::kBlock;
  if (const auto* const spectra = isKept ? m_study.Find(stretch) : nullptr) {
    phases.Add(*spectra, out);
    return;
  }
  std::vector<float> in(out.size());
  m_input.Read(source, place, in);
  auto spectra = phases.SpectraOf(in);
  phases.Add(spectra, out);
  if (isKept) m_study.Keep(stretch, std::move(spectra));
}

bool Pairing::AreSwapped(int64_t lag) const {
  Common difference;
  Common sum;
  std::vector<float> block[4];
  for (auto& samples : block) samples.resize(kFit);
  for (const int64_t place : Places(m_input.Frames(), kFit, kFits)) {
    for (const int channel : {0, 1}) {
      m_input.Read(channel, place, block[channel]);
      m_output.Read(channel, place + lag, block[2 + channel]);
    }
    for (size_t i = 0; i < kFit; ++i) {
      difference.Add(static_cast<double>(block[0][i] - block[1][i]),
                     static_cast<double>(block[2][i] - block[3][i]));
      sum.Add(static_cast<double>(block[0][i] + block[1][i]),
              static_cast<double>(block[2][i] + block[3][i]));
    }
  }
  const double least = kLeastDifference * static_cast<double>(kFit);
  return difference.first > std::max(least, kLeastWidth * sum.first) &&
         difference.second > std::max(least, kLeastWidth * sum.second) &&
         difference.Correlation() <= kTurned && sum.Correlation() >= kUpright;
}

}  // namespace host
