#include "desktop/dsp/music/beat_follower.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "desktop/common/counts.h"
#include "desktop/dsp/music/tempo_range.h"

namespace desktop {
namespace {

constexpr double kHistorySeconds = 10;

// How much must have been heard before the first beat, and after how long a time without an onset
// the music has stopped.
constexpr double kFirstSeconds = 2.6;
constexpr double kPauseSeconds = 2.5;

constexpr int kCombTeeth = 8;
constexpr float kToothFade = 0.92F;

// How much the longer of two notes is heavier.
constexpr float kLengthCounts = 0.7F;

// How far from half way a beat may be, in half onset values, and what it needs to be one.
constexpr size_t kHalfWayReach = 8;
constexpr float kHalfWayNeeds = 1.15F;

// How far a beat follows the comb.
constexpr float kPull = 0.35F;

}  // namespace

BeatFollower::BeatFollower(double step)
    : m_step(step),
      m_capacity(static_cast<size_t>(kHistorySeconds / step)),
      m_onsets(m_capacity),
      m_weights(m_capacity),
      m_bass(m_capacity),
      m_recent(m_capacity),
      m_correlation(static_cast<size_t>(4 * 60 / kSlowest / step) + 2),
      m_scores(Tempi()) {
  m_comb.reserve(static_cast<size_t>(2 * 60 / kSlowest / step) + 8);
  m_loudest.reserve(static_cast<size_t>(kHistorySeconds) + 1);
}

void BeatFollower::Put(float onset, float weight, float bass) {
  // Both count, so that neither every cymbal nor only the bass drum is heard. Above the mean of
  // about a second, and a little wider, for no player is exact.
  onset = std::sqrt(onset * weight);
  m_mean += 0.01F * (onset - m_mean);
  m_raw[0] = m_raw[1];
  m_raw[1] = m_raw[2];
  m_raw[2] = std::max(onset - m_mean, 0.0F);
  m_onsets[m_count % m_capacity] = 0.25F * m_raw[0] + 0.5F * m_raw[1] + 0.25F * m_raw[2];
  m_weights[m_count % m_capacity] = weight;
  m_bass[m_count % m_capacity] = bass;
  ++m_count;

  const auto quarter = static_cast<size_t>(0.25 / m_step);
  if (Real(m_count) * m_step > kFirstSeconds && m_count % quarter == 0) {
    UpdateTempo();
  }
  // The last beat has been heard whole when half the time to the next one has gone.
  if (m_steady && !m_looked && Real(m_count) > m_next.time - 0.5 * m_next.period) {
    Follow();
  }
}

void BeatFollower::Advance() {
  m_next.time += m_period;
  m_next.period = m_period;
  m_looked = false;
}

float BeatFollower::At(double age) const {
  const double from = std::floor(age);
  const auto whole = static_cast<size_t>(from);
  if (whole + 2 > std::min(m_count, m_capacity)) return 0;
  const auto share = static_cast<float>(age - from);
  const float newer = m_onsets[(m_count - 1 - whole) % m_capacity];
  const float older = m_onsets[(m_count - 2 - whole) % m_capacity];
  return std::min(newer + share * (older - newer), m_limit);
}

float BeatFollower::Comb(double age, double period) const {
  float sum = 0;
  float weights = 0;
  float weight = 1;
  const double end = Real(std::min(m_count, m_capacity)) - 1;
  for (int tooth = 0; tooth < kCombTeeth && age < end; ++tooth, age += period) {
    sum += weight * At(age);
    weights += weight;
    weight *= kToothFade;
  }
  return weights > 0 ? sum / weights : 0;
}

// Expects the next beat where the comb says, without regard to the beats before.
void BeatFollower::Lock() {
  const double last = m_steady ? m_next.time - m_next.period : 0;
  float strength = 0;
  const double now = Real(m_count);
  m_next.time = now - BestAge(m_period, &strength) + m_period;
  if (m_next.time - last < 0.5 * m_period) m_next.time += m_period;
  m_next.period = m_period;
  m_astray = 0;
  m_looked = true;
  m_steady = true;
}

bool BeatFollower::HasStopped() const {
  const size_t length = std::min(m_count, m_capacity);
  const size_t late = std::min(length, static_cast<size_t>(kPauseSeconds / m_step));
  float loudest = 0;
  float lately = 0;
  for (size_t age = 0; age < length; ++age) {
    const float onset = m_onsets[(m_count - 1 - age) % m_capacity];
    loudest = std::max(loudest, onset);
    if (age < late) lately = std::max(lately, onset);
  }
  return lately < 0.05F * loudest;
}

// The age of the last beat, where the comb meets the most. A note is heard as the heavier one the
// longer the time to the next (Povel and Essens, "Perception of temporal patterns", 1985), so that
// in a swing, whose two notes are often as loud, the beat is the one with the other before it.
double BeatFollower::BestAge(double period, float* strength) {
  m_comb.clear();
  for (double age = 1; age < period + 1; age += 0.5) m_comb.push_back(Comb(age, period));
  const size_t count = m_comb.size();
  const size_t third = (count + 1) / 3;
  size_t best = 0;
  float highest = -1;
  for (size_t i = 0; i < count; ++i) {
    const float here = m_comb[i];
    const float before = m_comb[(i + third) % count];
    const float after = m_comb[(i + count - third) % count];
    const float length = (before - after) / std::max(here + before + after, 1e-9F);
    const float score = here * (1 + kLengthCounts * length);
    if (score > highest) best = i;
    highest = std::max(highest, score);
  }
  best = OrHalfWay(best, period);
  *strength = m_comb[best];
  return 1 + 0.5 * Real(best);
}

// What lies half way to the next beat may sound as much as the beat; then the bass tells which is
// which. Of two beats in a row it often has only one, so that the heavier one counts.
size_t BeatFollower::OrHalfWay(size_t best, double period) const {
  const size_t count = m_comb.size();
  size_t other = best;
  float strength = 0;
  for (size_t at = best + count / 2 - kHalfWayReach; at <= best + count / 2 + kHalfWayReach; ++at) {
    if (m_comb[at % count] <= strength) continue;
    other = at % count;
    strength = m_comb[other];
  }
  const auto bass = [&](size_t at) {
    const double age = 1 + 0.5 * Real(at);
    return std::max(
        {Weight(m_bass, age, 2 * period), Weight(m_bass, age + period, 2 * period), 1e-9F});
  };
  const float ratio = bass(other) / bass(best);
  return strength * ratio > kHalfWayNeeds * m_comb[best] ? other : best;
}

void BeatFollower::Follow() {
  m_looked = true;
  float strength = 0;
  const double best = BestAge(m_period, &strength);
  const double last = m_next.time - m_next.period;
  const double expectedAge = Real(m_count) - last;
  double error = expectedAge - best;  // How much later than expected.
  error -= m_period * std::round(error / m_period);

  const float here = Comb(expectedAge, m_period);
  const float mean =
      std::accumulate(m_comb.begin(), m_comb.end(), 0.0F) / static_cast<float>(m_comb.size());
  m_next.power = std::clamp((here - mean) / std::max(here + mean, 1e-9F), 0.0F, 1.0F);

  if (std::fabs(error) < 0.12 * m_period) {
    m_astray = 0;
    m_next.time = last + m_period + kPull * error;
  } else if (strength > 1.2F * here && ++m_astray >= 3) {
    m_astray = 0;
    m_next.time = last + m_period + error;
    if (m_next.time - Real(m_count) < 1) m_next.time += m_period;
  } else {
    m_next.time = last + m_period;
  }
  m_next.period = m_period;
}

}  // namespace desktop
