#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"
#include "desktop/dsp/music/beat_follower.h"
#include "desktop/dsp/music/tempo_range.h"

namespace desktop {
namespace {

// The loudest onset of a second is usual where half of the seconds have one as loud; none counts
// for more than this much of it. A crash, or the first sound after silence, would outweigh the
// beats of the next 10 s.
constexpr float kMostOfUsual = 3.0F;
constexpr float kLeastOfLoudest = 0.01F;  // A second below it has no onset.

// There is no beat where no tempo has this score, and no longer one where none has the lower one:
// who has the beat keeps it through a bar of other rhythms.
constexpr float kMinRhythm = 0.12F;
constexpr float kKeptRhythm = 0.07F;

// How much of the correlations at thirds speaks against a period.
constexpr float kThirdsCount = 0.2F;

constexpr size_t kWeightReach = 3;  // Onset values.

// People tap at about two beats a second rather than at half or twice that (Parncutt, "A perceptual
// model of pulse salience and metrical accent in musical rhythms", 1994).
double Preference(double bpm) {
  const double octaves = std::log2(bpm / 115);
  return std::exp(-0.5 * octaves * octaves / (1.2 * 1.2));
}

}  // namespace

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

void BeatFollower::Correlate(size_t length, float power) {
  for (size_t lag = 0; lag < m_correlation.size(); ++lag) {
    float sum = 0;
    for (size_t i = lag; i < length; ++i) sum += m_recent[i] * m_recent[i - lag];
    const float share =
        lag < length ? static_cast<float>(length - lag) / static_cast<float>(length) : 1;
    m_correlation[lag] = sum / power / std::max(share, 0.25F);
  }
}

// How well the music repeats itself at a period and its multiples, less what it does at two and
// four thirds of it. Of straight eighths three make a period whose multiples all fit, but the beat
// is two of them; where three is right, as in a swing, those thirds fit less than the period.
float BeatFollower::Score(double period) const {
  float score = 0;
  for (int multiple = 1; multiple <= 4; ++multiple) score += Correlation(multiple * period) / 4;
  for (const double thirds : {2.0, 4.0}) {
    score -= kThirdsCount * std::max(Correlation(period * thirds / 3), 0.0F);
  }
  return score;
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
  Correlate(length, power);
  size_t best = 0;
  for (size_t i = 0; i < m_scores.size(); ++i) {
    const double period = 60 / TempoOf(i) / m_step;
    const float score = Score(period) * static_cast<float>(Preference(TempoOf(i)));
    m_scores[i] += (m_scored ? 0.2F : 1.0F) * (score - m_scores[i]);
    if (m_scores[i] > m_scores[best]) best = i;
  }
  m_scored = true;
  if (m_scores[best] < (m_steady ? kKeptRhythm : kMinRhythm) || HasStopped()) {
    m_steady = false;
    return;
  }
  const double before = m_period;
  m_period = ChooseLevel(60 / TempoOf(best) / m_step);
  if (!m_steady || std::fabs(std::log2(m_period / before)) > 0.2) Lock();
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
  const double fast = RefinePeriod(halves ? period / 2 : period);
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
  return m_slow ? RefinePeriod(2 * fast) : fast;
}

}  // namespace desktop
