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

// The loudest onset of a second is usual where half of the seconds have one as loud; none counts
// for more than this much of it. A crash, or the first sound after silence, would outweigh the
// beats of the next 10 s.
constexpr float kMostOfUsual = 3.0F;
constexpr float kLeastOfLoudest = 0.01F;  // A second below it has no onset.

// There is no beat where no tempo has this score, and no longer one where none has the lower one:
// who has the beat keeps it through a bar of other rhythms.
constexpr float kMinRhythm = 0.12F;
constexpr float kKeptRhythm = 0.07F;

constexpr size_t kWeightReach = 3;  // Onset values.

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
      m_tempo(step) {
  m_comb.reserve(static_cast<size_t>(2 * (1 + TempoDrift::kMostBend) * 60 / kSlowest / step) + 8);
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

void BeatFollower::SetLimit(size_t length) {
  const auto second = static_cast<size_t>(1 / m_step);
  m_loudest.clear();
  for (size_t age = 0; age + second <= length; age += second) {
    float loudest = 0;
    for (size_t i = 0; i < second; ++i) {
      loudest = std::max(loudest, m_onsets[(m_count - 1 - age - i) % m_capacity]);
    }
    m_loudest.push_back(loudest);
  }
  std::sort(m_loudest.begin(), m_loudest.end());
  const auto heard =
      std::upper_bound(m_loudest.begin(), m_loudest.end(), kLeastOfLoudest * m_loudest.back());
  m_limit = 0;
  if (heard == m_loudest.end()) return;
  m_limit = kMostOfUsual * heard[(m_loudest.end() - heard - 1) / 2];
}

void BeatFollower::UpdateTempo() {
  const size_t length = std::min(m_count, m_capacity);
  SetLimit(length);
  for (size_t i = 0; i < length; ++i) {
    m_recent[i] = std::min(m_onsets[(m_count - length + i) % m_capacity], m_limit);
  }
  if (!m_tempo.Update(m_recent, length) ||
      m_tempo.Rhythm() < (m_steady ? kKeptRhythm : kMinRhythm) || HasStopped()) {
    m_steady = false;
    return;
  }
  const double before = m_period;
  m_period = ChooseLevel(m_tempo.Period());
  if (!m_steady || std::fabs(std::log2(m_period / before)) > 0.2) Lock();
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
  m_drift = {};
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

// Returns the mean weight of the onsets that lie `age`, `age` + `period` and so on back, each the
// heaviest within 30 ms.
float BeatFollower::Weight(const std::vector<float>& ring, double age, double period) const {
  const double end = Real(std::min(m_count, m_capacity)) - kWeightReach - 1;
  float sum = 0;
  int teeth = 0;
  for (; age < end; age += period, ++teeth) {
    const size_t middle = Size(std::lround(age));
    float heaviest = 0;
    for (size_t near = middle - std::min(middle, kWeightReach); near <= middle + kWeightReach;
         ++near) {
      heaviest = std::max(heaviest, ring[(m_count - 1 - near) % m_capacity]);
    }
    sum += heaviest;
  }
  return teeth > 0 ? sum / static_cast<float>(teeth) : 0;
}

// Half or twice a tempo fits the autocorrelation nearly as well. Of the two the faster one is the
// beat when its beats weigh about the same, the slower one when they are heavy and light in turn.
double BeatFollower::ChooseLevel(double period) {
  const bool halves = 2 * 60 / (period * m_step) <= kFastest;
  const double fast = m_tempo.Refine(halves ? period / 2 : period);
  const double bpm = 60 / (fast * m_step);
  if (bpm < 2 * kSlowest) {
    m_slow = false;
    return fast;
  }
  float strength = 0;
  const double age = BestAge(fast, &strength);
  const float one = Weight(m_weights, age, 2 * fast);
  const float other = Weight(m_weights, age + fast, 2 * fast);
  const double evenness = std::min(one, other) / std::max({one, other, 1e-9F});
  m_evenness += 0.2 * (evenness - m_evenness);
  const double limit = std::clamp(0.36 + 0.14 * (bpm - 140) / 40, 0.3, 0.5);
  m_slow = m_evenness < limit + (m_slow ? 0.05 : -0.05);
  return m_slow ? m_tempo.Refine(2 * fast) : fast;
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
  const double period = m_period * (1 + m_drift.Bend());
  const double best = BestAge(period, &strength);
  const double last = m_next.time - m_next.period;
  const double expectedAge = Real(m_count) - last;
  double error = expectedAge - best;  // How much later than expected.
  error -= period * std::round(error / period);

  const float here = Comb(expectedAge, period);
  const float mean =
      std::accumulate(m_comb.begin(), m_comb.end(), 0.0F) / static_cast<float>(m_comb.size());
  m_next.power = std::clamp((here - mean) / std::max(here + mean, 1e-9F), 0.0F, 1.0F);

  if (std::fabs(error) < 0.12 * period) {
    m_astray = 0;
    m_drift.Take(error / m_period);
    m_next.time = last + m_period * (1 + m_drift.Bend()) + kPull * error;
  } else if (strength > 1.2F * here && ++m_astray >= 3) {
    m_astray = 0;
    m_next.time = last + m_period + error;
  } else {
    m_next.time = last + m_period;
  }
  m_next.period = m_period;
}

}  // namespace desktop
