#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// Finds the tempo: where the autocorrelation of the onsets agrees with itself at its multiples.
class BeatTempo {
 public:
  // step: seconds between two onset values. Throws when there is no memory.
  explicit BeatTempo(double step);

  // Takes the first `length` of the onsets, oldest first, and their mean from them; returns false
  // where they do not differ.
  bool Update(std::vector<float>& onsets, size_t length);

  // The time from beat to beat of the best tempo, in onset values, and its score.
  double Period() const;
  float Rhythm() const { return m_scores[m_best]; }

  // The period near `period` that fits best.
  double Refine(double period) const;

 private:
  float Correlation(double lag) const;
  void Correlate(const std::vector<float>& onsets, size_t length, float power);
  float Score(double period) const;

  const double m_step;
  std::vector<float> m_correlation;

  // The score of each tempo, averaged over the last seconds.
  std::vector<float> m_scores;
  bool m_scored = false;
  size_t m_best = 0;
};

}  // namespace desktop
