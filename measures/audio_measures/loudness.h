#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kLoudnessVersion = 1;
inline constexpr int kLoudnessRangeVersion = 1;

// loudness and loudness_range of a programme, as libebur128 has them.
//   loudness        LUFS: K-weighted, of blocks of 400 ms that pass the gates at -70 LUFS and at
//                   10 LU below the mean of those (ITU-R BS.1770-4, EBU R 128).
//   loudness_range  LU: from the 10th to the 95th percentile of the loudness of 3 s, gated at -70
//                   LUFS and at 20 LU below the mean (EBU Tech 3342).
// Channels of 5: L R C Ls Rs; of 6: L R C LFE Ls Rs; of one: that channel alone, not twice. Rates
// from 16 Hz to 2.8 MHz, 1 to 64 channels, finite samples; 0.4 s at least, the range 3 s.
class Loudness {
 public:
  Loudness(int channels, int rate);
  ~Loudness();
  Loudness(Loudness&&) noexcept;
  Loudness& operator=(Loudness&&) noexcept;

  // Interleaved whole frames.
  void Add(std::span<const float> frames);

  Figure Integrated() const;
  Figure Range() const;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace audio_measures
