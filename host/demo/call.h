#pragma once

#include <cstdint>
#include <vector>

#include "demo/voice.h"

namespace host {

inline constexpr double kCallDelay = 0.089;  // Of the echo's first arrival, s.

// A call: what the loudspeaker plays, and what the microphone hears of it and of who sits there.
struct Call {
  std::vector<double> far;
  std::vector<double> near;
  std::vector<double> talk;  // The part of `near` that is said at the microphone.
  double delay;              // Of the echo's first arrival, s.
  double echoGain;           // Energy of the echo against the far end, dB.
  Stretch doubleTalk;        // Both talk.
  std::vector<Stretch> nearTalk;
};

// 20 s: the far end talks all the time, the near end from 10 s to 16 s.
Call MakeCall(int rate);

// Speech and a noise so many dB below it, pauses left out.
std::vector<double> AddNoise(const Speech& speech, const std::vector<double>& noise, double snr);

}  // namespace host
