#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "guards/input_study.h"
#include "guards/rules.h"
#include "guards/signal.h"
#include "guards/track.h"

namespace host {

// How a channel of the output follows the channel of the input that it was made from.
struct Match {
  bool known = false;      // Else nothing of the following is.
  int64_t lag = 0;         // Frames of the output by which it is later.
  double correlation = 0;  // At that lag, below 0 when upside down.
};

// The input beside the output: at the rate of the output and in time with it. Channel for channel
// where both have as many, the mean of the input where not.
class Pairing {
 public:
  // Looks at some stretches that are spread over the signals, so that long ones take no longer.
  // Both must stay.
  Pairing(InputStudy& input, const Signal& output, const GuardRules& rules);

  const Track& Input() const { return m_input; }
  const Track& Output() const { return m_output; }
  const Match& Of(int channel) const { return m_matches[static_cast<size_t>(channel)]; }

  // The channel of the input that a channel of the output was made from: its like, the other one of
  // two where they are swapped, or Track::kMean.
  int Source(int channel) const;

  // Whether the second channel of two follows the first and the other way round.
  bool Swapped() const { return m_swapped; }

 private:
  // A delay that is plain at a lower rate is only made sure of; others are looked for in full.
  Match MatchOf(int channel, int source) const;
  // Close to a lag, as stretches of so many frames have it.
  Match MatchAt(int channel, int source, int64_t lag, int polarity, size_t frames) const;
  // Adds what a channel of the input has at a place, and what has become of it.
  void AddAt(int source, int64_t place, std::span<const float> out,
             audio_measures::PhaseFit& phases) const;
  bool AreSwapped(int64_t lag) const;

  InputStudy& m_study;
  Track m_input;
  Track m_output;
  int m_rate;
  int m_channels;
  int64_t m_least;  // Frames by which the output may be later.
  int64_t m_most;
  bool m_alike;  // As many channels on both sides.
  bool m_swapped = false;
  std::vector<Match> m_matches = {};
};

}  // namespace host
