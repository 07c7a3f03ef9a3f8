#include "audio_measures/active_level.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace audio_measures {

namespace {

constexpr double kTimeConstant = 0.03;  // s
constexpr double kHangover = 0.2;       // s
constexpr int kLowest = -20;            // Exponent of the lowest threshold.

double Decibels(double power) { return 10 * std::log10(power); }

// What a vector register of any machine holds. The compiler does not find this by itself.
using Doubles = double __attribute__((vector_size(16)));
constexpr size_t kLanes = sizeof(Doubles) / sizeof(double);

Doubles Load(const double* from) {
  Doubles value;
  memcpy(&value, from, sizeof value);
  return value;
}

double Sum(const Doubles& lanes) { return lanes[0] + lanes[1]; }

}  // namespace

ActiveLevel::ActiveLevel(int rate)
    : m_smoothing(std::exp(-1 / (rate * kTimeConstant))),
      m_hangover(static_cast<int64_t>(std::ceil(rate * kHangover))) {
  m_edges.fill(-INFINITY);
  auto edge = m_edges.begin();
  double value = std::ldexp(1.0, kLowest);
  for (Threshold& each : m_thresholds) {
    each.value = value;
    *++edge = static_cast<float>(value);
    value *= 2;
  }
  m_edges.back() = INFINITY;
  double kept = 1;
  for (size_t i = kBlock; i-- > 0; kept *= m_smoothing) {
    m_once[i] = (1 - m_smoothing) * kept;
    m_twice[i] = (1 - m_smoothing) * m_once[i] * static_cast<double>(kBlock - i);
  }
  m_kept = kept;
}

size_t ActiveLevel::Reached(float envelope) const {
  const auto edges = std::span(m_edges).subspan<1, kThresholds>();
  const auto beyond = std::ranges::find_if(edges, [=](float edge) { return !(envelope >= edge); });
  return static_cast<size_t>(beyond - edges.begin());
}

void ActiveLevel::Count(size_t reached, int64_t samples) {
  m_samples += static_cast<uint64_t>(samples);
  for (Threshold& each : std::span(m_thresholds).first(reached)) {
    each.left = m_hangover;
    each.active += static_cast<uint64_t>(samples);
  }
  for (Threshold& each : std::span(m_thresholds).subspan(reached)) {
    const int64_t active = std::min(each.left, samples);
    each.left -= active;
    each.active += static_cast<uint64_t>(active);
  }
}

void ActiveLevel::AddEach(std::span<const float> samples, Stay& stay) {
  const double keep = m_smoothing;
  for (const float sample : samples) {
    const auto value = static_cast<double>(sample);
    m_squares += value * value;
    m_first = keep * m_first + (1 - keep) * std::fabs(value);
    m_second = keep * m_second + (1 - keep) * m_first;
    const auto envelope = static_cast<float>(m_second);
    if (!(envelope >= stay.least && envelope < stay.beyond)) {
      Count(stay.reached, stay.samples);
      stay.samples = 0;
      stay.reached = Reached(envelope);
      stay.least = m_edges[stay.reached];
      stay.beyond = m_edges[stay.reached + 1];
    }
    ++stay.samples;
  }
}

bool ActiveLevel::AddBlock(std::span<const float, kBlock> samples, Stay& stay) {
  std::array<double, kBlock> magnitudes;
  std::ranges::transform(samples, magnitudes.begin(),
                         [](float sample) { return static_cast<double>(std::fabs(sample)); });
  Doubles first = {};
  Doubles second = {};
  Doubles squares = {};
  for (size_t i = 0; i + kLanes <= kBlock; i += kLanes) {
    const Doubles magnitude = Load(&magnitudes[i]);
    first += magnitude * Load(&m_once[i]);
    second += magnitude * Load(&m_twice[i]);
    squares += magnitude * magnitude;
  }
  const double raised = Sum(first);
  const double share = (1 - m_smoothing) * static_cast<double>(kBlock);

  // Between the ends of the block the first smoothing is nowhere below what is kept of it, nor
  // above what the samples would make of it were none of it lost; the second one follows it so
  // slowly.
  const double lowest = m_kept * m_first;
  const double highest = m_first + raised / (m_kept / m_smoothing);
  const double above = m_second + share * std::max(0.0, highest - m_kept * m_second);
  const double below = m_second - share * std::max(0.0, above - lowest);
  if (!(static_cast<float>(below) >= stay.least && static_cast<float>(above) < stay.beyond)) {
    return false;
  }
  m_second = m_kept * m_second + share * m_kept * m_first + Sum(second);
  m_first = m_kept * m_first + raised;
  m_squares += Sum(squares);
  stay.samples += static_cast<int64_t>(kBlock);
  return true;
}

// The envelope passes a threshold now and then only: what is in between is counted at once.
void ActiveLevel::Add(std::span<const float> samples) {
  Stay stay{.least = INFINITY};
  while (!samples.empty()) {
    const size_t count = std::min(kBlock, samples.size());
    if (count < kBlock || !AddBlock(samples.first<kBlock>(), stay)) {
      AddEach(samples.first(count), stay);
    }
    samples = samples.subspan(count);
  }
  Count(stay.reached, stay.samples);
}

Figure ActiveLevel::Level() const {
  if (m_samples == 0) return Unknown(kNoSamples);
  if (!std::isfinite(m_squares)) return Unknown(kNotFinite);
  if (m_squares <= 0) return Unknown(kSilence);
  // The level over the time above each threshold rises more slowly than the threshold does: the
  // one sought lies where it is the margin above it, between two thresholds on a line in dB.
  double levelBefore = 0;
  double aboveBefore = 0;
  for (const Threshold& each : m_thresholds) {
    if (each.active == 0) break;
    const double level = Decibels(m_squares / static_cast<double>(each.active));
    const double above = level - 20 * std::log10(each.value);
    if (above <= kMargin) {
      if (&each == m_thresholds.data()) return Unknown("below the lowest threshold");
      const double part = (aboveBefore - kMargin) / (aboveBefore - above);
      return Known(levelBefore + part * (level - levelBefore));
    }
    levelBefore = level;
    aboveBefore = above;
  }
  return Unknown("no activity as long as a sound");
}

Figure ActiveLevel::Activity() const {
  const Figure level = Level();
  if (!level.value) return level;
  const double mean = m_squares / static_cast<double>(m_samples);
  return Known(std::pow(10, (Decibels(mean) - *level.value) / 10));
}

}  // namespace audio_measures
