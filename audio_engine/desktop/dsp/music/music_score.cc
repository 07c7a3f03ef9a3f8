#include "desktop/dsp/music/music_score.h"

#include <algorithm>

namespace desktop {
namespace {

// Returns by how many `unit`s a figure lies above `zero`, within bounds.
double Ramp(double value, double zero, double unit, double lowest, double highest) {
  return std::clamp((value - zero) / unit, lowest, highest);
}

}  // namespace

double MusicScore(const MusicFeatures::Values& values) {
  const double deviation = values[MusicFeatures::kLevelDeviation];
  const double tonal = values[MusicFeatures::kTonal];
  const double flux = values[MusicFeatures::kFlux];
  const double colour = values[MusicFeatures::kColourDeviation];
  const double beat = values[MusicFeatures::kBeat];
  double score = -Ramp(deviation, 6.5, 2, -1.5, 1.5);
  score += Ramp(tonal, 14, 4, -0.7, 2.5);
  score += Ramp(values[MusicFeatures::kSustained], 0.3, 0.1, -0.2, 2);
  score += Ramp(beat, 0.25, 0.05, -0.65, 3);
  score -= Ramp(flux, 2.9, 0.8, -0.3, 1);
  // Between drum and cymbal the colour changes more than between vowel and consonant.
  score += Ramp(colour, 14, 3, 0, 2);
  // A lone instrument rests between its phrases as a talker does, but while it sounds its spectrum
  // moves less than that of syllables.
  score += Ramp(-flux, -2.8, 0.2, 0, 3) * Ramp(deviation, 9, 2, 0, 1);
  score += Ramp(-colour, -3, 1, 0, 2) * Ramp(tonal, 5, 4, 0, 1);
  // What has neither tone nor beat is noise, the surer if it hardly changes.
  const double even = tonal < 15 ? Ramp(-deviation, -2.7, 0.5, 0, 1) : 0;
  score -= 3 * std::max(even, Ramp(-tonal, -4, 1, 0, 1)) * Ramp(-beat, -0.25, 0.1, 0, 1);
  return score;
}

}  // namespace desktop
