#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "guards/signal.h"

namespace host {

// Where a channel has signal without a break: every 5 ms of it within 15 dB of the active level and
// above -60 dBFS, without 1 ms that is all but silent. One bit of memory for 5 ms would do; it
// takes four bytes.
class Presence {
 public:
  // activeLevel: of the channel, dBFS. channel may be Track::kMean.
  Presence(const Signal& signal, int channel, double activeLevel);

  // Whether there is signal all the time between two seconds; none outside the signal.
  bool Throughout(double from, double to) const;

 private:
  double m_rate;                     // Of blocks.
  std::vector<uint32_t> m_unbroken;  // Blocks with signal in a row, up to and with each block.
};

}  // namespace host
