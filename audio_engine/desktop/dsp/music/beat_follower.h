#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "desktop/dsp/music/beat_tempo.h"
#include "desktop/dsp/music/tempo_drift.h"

namespace desktop {

// A beat that the follower expects: its time, counted in onset values from the start, the time from
// one beat to the next, and how clearly the music marks the beats, 0 to 1.
struct ExpectedBeat {
  double time = 0;
  double period = 0;
  float power = 0;
};

// Finds and foretells the beat in an onset envelope of 100 values a second. The tempo is where the
// autocorrelation of the last 10 s agrees with itself at its multiples, the phase where a comb of
// that tempo meets the most onsets (Scheirer, Tempo and beat analysis of acoustic musical signals,
// 1998; Davies and Plumbley, Context-dependent beat tracking of musical audio, 2007); the next beat
// follows the last by one period, bent where the tempo drifts, pulled towards what the comb says.
class BeatFollower {
 public:
  // step: seconds between two onset values. Throws when there is no memory.
  explicit BeatFollower(double step);

  // Takes the next onset value, its weight, and that of its bass.
  void Put(float onset, float weight, float bass);

  // True when there is a beat; it changes until it is taken.
  bool IsSteady() const { return m_steady; }
  const ExpectedBeat& Next() const { return m_next; }

  // Marks the expected beat as told and expects the one after.
  void Advance();

 private:
  // The smoothed onset so many values ago.
  float At(double age) const;
  float Comb(double age, double period) const;

  // Finds the limit of the last `length` onsets.
  void SetLimit(size_t length);
  void UpdateTempo();
  double ChooseLevel(double period);
  float Weight(const std::vector<float>& ring, double age, double period) const;
  size_t OrHalfWay(size_t best, double period) const;
  bool HasStopped() const;
  void Lock();
  void Follow();
  double BestAge(double period, float* strength);

  const double m_step;

  // Rings of the last 10 s: m_capacity smoothed onsets, their weights, and those of the bass.
  const size_t m_capacity;
  std::vector<float> m_onsets;
  std::vector<float> m_weights;
  std::vector<float> m_bass;

  // What an onset counts at most.
  float m_limit = std::numeric_limits<float>::max();
  std::vector<float> m_loudest;  // Of each second.

  // A straight copy of the onsets for the tempo, newest last.
  std::vector<float> m_recent;
  BeatTempo m_tempo;

  // The comb at ages of 1, 1.5 and so on up to a period.
  std::vector<float> m_comb;

  size_t m_count = 0;
  float m_raw[3] = {};
  float m_mean = 0;
  bool m_steady = false;
  double m_period = 0;

  // The weight of the weaker of two beats in a row by that of the stronger, averaged, and whether
  // the beat is every other one of them.
  double m_evenness = 1;
  bool m_slow = false;

  // At how many beats in a row the comb pointed elsewhere.
  int m_astray = 0;

  TempoDrift m_drift = {};
  ExpectedBeat m_next;

  // Whether the comb was asked since the last beat.
  bool m_looked = true;
};

}  // namespace desktop
