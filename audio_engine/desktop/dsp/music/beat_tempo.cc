#include "desktop/dsp/music/beat_tempo.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"
#include "desktop/dsp/music/tempo_range.h"

namespace desktop {
namespace {

// How much of the correlations at thirds speaks against a period.
constexpr float kThirdsCount = 0.2F;

// People tap at about two beats a second rather than at half or twice that (Parncutt, "A perceptual
// model of pulse salience and metrical accent in musical rhythms", 1994).
double Preference(double bpm) {
  const double octaves = std::log2(bpm / 115);
  return std::exp(-0.5 * octaves * octaves / (1.2 * 1.2));
}

}  // namespace

BeatTempo::BeatTempo(double step)
    : m_step(step),
      m_correlation(static_cast<size_t>(4 * 60 / kSlowest / step) + 2),
      m_scores(Tempi()) {}

float BeatTempo::Correlation(double lag) const {
  const auto whole = static_cast<size_t>(lag);
  if (whole + 1 >= m_correlation.size()) return 0;
  const auto share = static_cast<float>(lag - Real(whole));
  return m_correlation[whole] + share * (m_correlation[whole + 1] - m_correlation[whole]);
}

void BeatTempo::Correlate(const std::vector<float>& onsets, size_t length, float power) {
  for (size_t lag = 0; lag < m_correlation.size(); ++lag) {
    float sum = 0;
    for (size_t i = lag; i < length; ++i) sum += onsets[i] * onsets[i - lag];
    const float share =
        lag < length ? static_cast<float>(length - lag) / static_cast<float>(length) : 1;
    m_correlation[lag] = sum / power / std::max(share, 0.25F);
  }
}

// How well the music repeats itself at a period and its multiples, less what it does at two and
// four thirds of it. Of straight eighths three make a period whose multiples all fit, but the beat
// is two of them; where three is right, as in a swing, those thirds fit less than the period.
float BeatTempo::Score(double period) const {
  float score = 0;
  for (int multiple = 1; multiple <= 4; ++multiple) score += Correlation(multiple * period) / 4;
  for (const double thirds : {2.0, 4.0}) {
    score -= kThirdsCount * std::max(Correlation(period * thirds / 3), 0.0F);
  }
  return score;
}

bool BeatTempo::Update(std::vector<float>& onsets, size_t length) {
  float mean = 0;
  for (size_t i = 0; i < length; ++i) mean += onsets[i] / static_cast<float>(length);
  for (size_t i = 0; i < length; ++i) onsets[i] -= mean;
  float power = 0;
  for (size_t i = 0; i < length; ++i) power += onsets[i] * onsets[i];
  if (power <= 0) return false;
  Correlate(onsets, length, power);
  m_best = 0;
  for (size_t i = 0; i < m_scores.size(); ++i) {
    const double period = 60 / TempoOf(i) / m_step;
    const float score = Score(period) * static_cast<float>(Preference(TempoOf(i)));
    m_scores[i] += (m_scored ? 0.2F : 1.0F) * (score - m_scores[i]);
    if (m_scores[i] > m_scores[m_best]) m_best = i;
  }
  m_scored = true;
  return true;
}

double BeatTempo::Period() const { return 60 / TempoOf(m_best) / m_step; }

double BeatTempo::Refine(double period) const {
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

}  // namespace desktop
