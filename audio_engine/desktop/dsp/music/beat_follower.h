#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// A beat that the follower expects: when, counted in onset values from the start, the tempo, and
// how clearly the music marks the beats, 0 to 1.
struct ExpectedBeat {
  double time = 0;
  double period = 0;  // Onset values.
  float power = 0;
};

// Finds and foretells the beat in an onset envelope of 100 values a second. The tempo is where the
// autocorrelation of the last 10 s agrees with itself at its multiples, the phase where a comb of
// that tempo meets the most onsets (Scheirer, Tempo and beat analysis of acoustic musical signals,
// 1998; Davies and Plumbley, Context-dependent beat tracking of musical audio, 2007); the next beat
// follows the last by one period, pulled towards what the comb says.
class BeatFollower {
 public:
  // step: seconds between two onset values. Throws when there is no memory.
  explicit BeatFollower(double step);

  // Takes the next onset value and its weight.
  void Put(float onset, float weight);

  // True when there is a beat; it changes until it is taken.
  bool IsSteady() const { return m_steady; }
  const ExpectedBeat& Next() const { return m_next; }

  // Marks the expected beat as told and expects the one after.
  void Advance();

 private:
  float At(double age) const;  // The smoothed onset so many values ago.
  float Comb(double age, double period) const;
  float Correlation(double lag) const;
  void UpdateTempo();
  double RefinePeriod(double period) const;
  double ChooseLevel(double period);
  float Weight(double age, double period) const;
  bool HasStopped() const;
  void Lock();
  void Follow();
  double BestAge(double period, float* strength) const;

  const double m_step;
  const size_t m_capacity;       // Onset values that are kept: 10 s.
  std::vector<float> m_onsets;   // A ring, smoothed.
  std::vector<float> m_weights;  // The same ring of weights.
  std::vector<float> m_recent;   // A straight copy of it for the autocorrelation, newest last.
  std::vector<float> m_correlation;
  std::vector<float> m_scores;  // Of each tempo, averaged over the last seconds.
  bool m_scored = false;
  size_t m_count = 0;
  float m_raw[3] = {};
  float m_mean = 0;
  bool m_steady = false;
  double m_period = 0;
  double m_evenness = 1;  // Weight of the weaker of two beats in a row by the stronger, averaged.
  bool m_slow = false;    // Whether the beat is every other one of those.
  int m_astray = 0;       // Beats in a row at which the comb pointed elsewhere.
  ExpectedBeat m_next;
  bool m_looked = true;  // Whether the comb was asked since the last beat.
};

}  // namespace desktop
