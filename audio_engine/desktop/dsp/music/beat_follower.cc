#include "desktop/dsp/music/beat_follower.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

constexpr double kHistorySeconds = 10;

// How much must have been heard before the first beat, and after how long a time without an onset
// the music has stopped.
constexpr double kFirstSeconds = 2.6;
constexpr double kPauseSeconds = 2.5;

// The range of tempi in beats a minute, and the ratio of one that is tried to the next.
constexpr double kSlowest = 60;
constexpr double kFastest = 190;
constexpr double kTempoStep = 1.01;
constexpr int kCombTeeth = 8;
constexpr float kToothFade = 0.92F;

// How far a beat follows the comb.
constexpr float kPull = 0.35F;
constexpr size_t kWeightReach = 3;  // Onset values.

// The loudest onset of a second is usual where half of the seconds have one as loud; none counts
// for more than this much of it. A crash, or the first sound after silence, would outweigh the
// beats of the next 10 s.
constexpr float kMostOfUsual = 3.0F;
constexpr float kLeastOfLoudest = 0.01F;  // A second below it has no onset.

// There is no beat where no tempo has this score.
constexpr float kMinRhythm = 0.15F;

size_t Tempi() {
  return static_cast<size_t>(std::log(kFastest / kSlowest) / std::log(kTempoStep)) + 1;
}

double TempoOf(size_t index) { return kSlowest * std::pow(kTempoStep, Real(index)); }

// People tap at about two beats a second rather than at half or twice that (Parncutt, "A perceptual
// model of pulse salience and metrical accent in musical rhythms", 1994).
double Preference(double bpm) {
  const double octaves = std::log2(bpm / 115);
  return std::exp(-0.5 * octaves * octaves / (1.2 * 1.2));
}

}  // namespace

BeatFollower::BeatFollower(double step)
    : m_step(step),
      m_capacity(static_cast<size_t>(kHistorySeconds / step)),
      m_onsets(m_capacity),
      m_weights(m_capacity),
      m_recent(m_capacity),
      m_correlation(static_cast<size_t>(4 * 60 / kSlowest / step) + 2),
      m_scores(Tempi()) {
  m_loudest.reserve(static_cast<size_t>(kHistorySeconds) + 1);
}

void BeatFollower::Put(float onset, float weight) {
  // Both count, so that neither every cymbal nor only the bass drum is heard. Above the mean of
  // about a second, and a little wider, for no player is exact.
  onset = std::sqrt(onset * weight);
  m_mean += 0.01F * (onset - m_mean);
  m_raw[0] = m_raw[1];
  m_raw[1] = m_raw[2];
  m_raw[2] = std::max(onset - m_mean, 0.0F);
  m_onsets[m_count % m_capacity] = 0.25F * m_raw[0] + 0.5F * m_raw[1] + 0.25F * m_raw[2];
  m_weights[m_count % m_capacity] = weight;
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

float BeatFollower::Correlation(double lag) const {
  const auto whole = static_cast<size_t>(lag);
  if (whole + 1 >= m_correlation.size()) return 0;
  const auto share = static_cast<float>(lag - Real(whole));
  return m_correlation[whole] + share * (m_correlation[whole + 1] - m_correlation[whole]);
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
  float mean = 0;
  for (size_t i = 0; i < length; ++i) {
    m_recent[i] = std::min(m_onsets[(m_count - length + i) % m_capacity], m_limit);
    mean += m_recent[i] / static_cast<float>(length);
  }
  for (size_t i = 0; i < length; ++i) m_recent[i] -= mean;
  float power = 0;
  for (size_t i = 0; i < length; ++i) power += m_recent[i] * m_recent[i];
  if (power <= 0) {
    m_steady = false;
    return;
  }
  for (size_t lag = 0; lag < m_correlation.size(); ++lag) {
    float sum = 0;
    for (size_t i = lag; i < length; ++i) sum += m_recent[i] * m_recent[i - lag];
    const float share =
        lag < length ? static_cast<float>(length - lag) / static_cast<float>(length) : 1;
    m_correlation[lag] = sum / power / std::max(share, 0.25F);
  }

  size_t best = 0;
  for (size_t i = 0; i < m_scores.size(); ++i) {
    const double period = 60 / TempoOf(i) / m_step;
    float score = 0;
    for (int multiple = 1; multiple <= 4; ++multiple) score += Correlation(multiple * period) / 4;
    score *= static_cast<float>(Preference(TempoOf(i)));
    m_scores[i] += (m_scored ? 0.2F : 1.0F) * (score - m_scores[i]);
    if (m_scores[i] > m_scores[best]) best = i;
  }
  m_scored = true;
  if (m_scores[best] < kMinRhythm || HasStopped()) {
    m_steady = false;
    return;
  }
  const double before = m_period;
  m_period = ChooseLevel(60 / TempoOf(best) / m_step);
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

double BeatFollower::RefinePeriod(double period) const {
  double best = period;
  float bestScore = -1;
  for (double candidate = period * 0.985; candidate < period * 1.015; candidate += period * 0.001) {
    float score = 0;
    for (int multiple = 1; multiple * candidate < Real(m_correlation.size() - 2); ++multiple) {
      score += Correlation(multiple * candidate);
    }
    if (score > bestScore) {
      bestScore = score;
      best = candidate;
    }
  }
  return best;
}

// Returns the mean weight of the onsets that lie `age`, `age` + `period` and so on back, each the
// heaviest within 30 ms.
float BeatFollower::Weight(double age, double period) const {
  const double end = Real(std::min(m_count, m_capacity)) - kWeightReach - 1;
  float sum = 0;
  int teeth = 0;
  for (; age < end; age += period, ++teeth) {
    const size_t middle = Size(std::lround(age));
    float heaviest = 0;
    for (size_t near = middle - std::min(middle, kWeightReach); near <= middle + kWeightReach;
         ++near) {
      heaviest = std::max(heaviest, m_weights[(m_count - 1 - near) % m_capacity]);
    }
    sum += heaviest;
  }
  return teeth > 0 ? sum / static_cast<float>(teeth) : 0;
}

// Half or twice a tempo fits the autocorrelation nearly as well. Of the two the faster one is the
// beat when its beats weigh about the same, the slower one when they are heavy and light in turn.
double BeatFollower::ChooseLevel(double period) {
  const bool halves = 2 * 60 / (period * m_step) <= kFastest;
  const double fast = RefinePeriod(halves ? period / 2 : period);
  const double bpm = 60 / (fast * m_step);
  if (bpm < 2 * kSlowest) {
    m_slow = false;
    return fast;
  }
  float strength = 0;
  const double age = BestAge(fast, &strength);
  const float one = Weight(age, 2 * fast);
  const float other = Weight(age + fast, 2 * fast);
  const double evenness = std::min(one, other) / std::max({one, other, 1e-9F});
  m_evenness += 0.2 * (evenness - m_evenness);
  const double limit = std::clamp(0.36 + 0.14 * (bpm - 140) / 40, 0.3, 0.5);
  m_slow = m_evenness < limit + (m_slow ? 0.05 : -0.05);
  return m_slow ? RefinePeriod(2 * fast) : fast;
}

// The age of the comb's best phase within the last period.
double BeatFollower::BestAge(double period, float* strength) const {
  double best = 0;
  *strength = -1;
  for (double age = 1; age < period + 1; age += 0.5) {
    const float comb = Comb(age, period);
    if (comb > *strength) {
      *strength = comb;
      best = age;
    }
  }
  return best;
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
  float mean = 0;
  for (double age = 1; age < m_period + 1; age += 1) mean += Comb(age, m_period);
  mean /= static_cast<float>(m_period);
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
