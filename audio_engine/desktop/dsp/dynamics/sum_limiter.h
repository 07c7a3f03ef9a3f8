#pragma once

#include <cstddef>
#include <cstdint>

namespace desktop {

// Brings sums of 16-bit samples back into range without delay: a sample beyond full scale lowers
// the gain at once, for all channels alike, and the gain returns to 1 within about 200 ms (a peak
// limiter as in Zölzer, "DAFX", 2011, with no attack time). As long as nothing is too loud the sums
// come out unchanged, bit for bit.
class SumLimiter {
 public:
  // Limits `frames` frames of `channels` interleaved sums into `out`.
  void Process(const int32_t* sums, size_t frames, size_t channels, int16_t* out);

 private:
  float m_gain = 1;
};

}  // namespace desktop
