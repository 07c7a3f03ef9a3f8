#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "audio_measures/figure.h"
#include "audio_measures/k_weighting.h"

namespace audio_measures {

inline constexpr int kLoudnessVersion = 1;
inline constexpr int kLoudnessRangeVersion = 1;

// loudness and loudness_range of a programme.
//   loudness        LUFS: K-weighted, of blocks of 400 ms that pass the gates at -70 LUFS and at
//                   10 LU below the mean of those (ITU-R BS.1770-4, EBU R 128).
//   loudness_range  LU: from the 10th to the 95th percentile of the loudness of 3 s, gated at -70
//                   LUFS and at 20 LU below the mean (EBU Tech 3342).
// The weighting at other rates than 48 kHz is that of its analogue prototypes (B. De Man,
// "Evaluation of implementations of the EBU R128 loudness measurement", AES 145th convention,
// 2018). Channels of 4: L R Ls Rs; of 5: L R C Ls Rs; of 6: L R C LFE Ls Rs, and what comes after
// these does not count; of one: that channel alone, not twice. Rates from 16 Hz to 2.8 MHz, 1 to 64
// channels, finite samples; 0.4 s at least, the range 3 s.
class Loudness {
 public:
  Loudness(int channels, int rate);

  // Interleaved whole frames.
  void Add(std::span<const float> frames);

  Figure Integrated() const;
  Figure Range() const;

 private:
  const char* Fault(size_t tenths) const;
  void EndTenth();
  // Mean powers of windows of `tenths`, one every `step`, that pass the gate at -70 LUFS.
  std::vector<double> Gated(size_t tenths, size_t step) const;

  bool m_valid;
  std::vector<KWeighting> m_pairs;  // Of channels.
  size_t m_channels;
  size_t m_tenth;                     // Frames of 0.1 s.
  size_t m_inTenth = 0;               // Of those, how many there are.
  std::vector<double> m_powers = {};  // Sums of the weighted squares of each tenth.
  bool m_finite = true;
};

}  // namespace audio_measures
