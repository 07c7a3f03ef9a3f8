#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "audio_measures/active_level.h"
#include "audio_measures/clipped.h"
#include "audio_measures/level.h"
#include "guards/signal.h"

namespace host {

// The mean over a whole channel, and how far it may be off: slow sounds do not come out even.
class MeanOffset {
 public:
  void Add(double meanOfBlock);
  double Mean() const { return m_sum / static_cast<double>(m_blocks); }
  std::optional<double> Error() const;  // Standard error of the mean; nothing below five blocks.

 private:
  uint64_t m_blocks = 0;
  double m_sum = 0;
  double m_squares = 0;
};

// What can be said of one channel without looking at another.
struct ChannelSurvey {
  audio_measures::Level level;
  audio_measures::ActiveLevel active;
  audio_measures::Clipped clipped;
  MeanOffset offset = {};  // By blocks of 0.1 s.
  bool longZeros = false;  // Whether there may be so many zeros in a row as make a drop-out.
};

// Of each channel, in one pass; with another number of `channels` than the signal has, that of its
// mean for each. Samples that are not finite count as 0.
std::vector<ChannelSurvey> SurveyOf(const Signal& signal, int channels);

}  // namespace host
