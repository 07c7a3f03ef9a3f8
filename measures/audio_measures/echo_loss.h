#pragma once

#include <span>
#include <vector>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kErleVersion = 2;
inline constexpr int kConvergenceVersion = 2;

struct EchoLoss {
  Figure erle;         // dB, higher is better.
  Figure convergence;  // s, lower is better.
  // ERLE over time, one for each block of 20 ms while only the far end talks.
  struct At {
    double seconds = 0;  // In the microphone's signal.
    double erle = 0;     // dB
  };
  std::vector<At> track = {};
};

// erle and convergence of an echo canceller: the echo return loss enhancement, as ITU-T G.168
// (2015) has it the level of what went in over that of what came out, while only the far end talks.
//   track        over 0.2 s of such talk, every 20 ms of it; 120 dB at most.
//   erle         the median of that.
//   convergence  how long the far end has talked alone when it first reaches 20 dB.
// far: what the loudspeaker played; microphone: what the canceller was given; near: what was said
// there, or empty where it is not known, which is taken for nothing said; output: what the
// canceller made of it. Of one rate, from 8 kHz, finite. The far end talks in the blocks that are
// active (activity.h), moved by the delay of the echo; the near end is silent in its pauses. The
// delays of the echo and of the output are found within searchSeconds (alignment.h), or where they
// are not clear taken for 0. Noise at the microphone is not echo: a canceller that leaves it alone
// can have no more than the ratio of both.
EchoLoss MeasureEchoLoss(std::span<const float> far, std::span<const float> microphone,
                         std::span<const float> near, std::span<const float> output, int rate,
                         double searchSeconds);

}  // namespace audio_measures
