#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace desktop {

// The low-pass filters of a change of rate by a ratio of whole numbers: one for each place that a
// target sample can have between two source samples (Crochiere and Rabiner, Multirate Digital
// Signal Processing, 1983), each a sinc in a Kaiser window. Flat to 0.92 of the lower rate's half,
// and 94 dB down from that half on. Where a ratio has too many places for a table, filters are
// interpolated between neighbours, which costs twice the time. Fixed after construction.
class PolyphaseFilter {
 public:
  // The rates have no common divisor; source is at most 1000 times target. Throws std::bad_alloc.
  PolyphaseFilter(uint32_t source, uint32_t target);

  // How many source samples one target sample is made of.
  size_t Taps() const { return m_taps; }

  // How much later a sound comes out than it went in, in target samples.
  uint32_t Lag() const { return m_lag; }

  // The target sample that lies `phase` / target of a sample, less the lag, after the last of the
  // Taps() source samples. The same bits on every machine.
  float At(const float* samples, uint32_t phase) const;

 private:
  void Design(double lag, double halfWidth, double cutoff);

  const uint32_t m_target;
  const uint32_t m_lag;
  const size_t m_taps;

  // The filters of m_steps places one after the other, and one more at the end, of place 1.
  size_t m_steps;
  std::vector<float> m_table;
};

}  // namespace desktop
