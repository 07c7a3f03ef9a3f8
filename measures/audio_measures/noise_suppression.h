#pragma once

#include <span>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kNoiseReductionVersion = 2;
inline constexpr int kSpeechRetainedVersion = 2;
inline constexpr int kDeltaSnrVersion = 2;
inline constexpr int kMusicalVersion = 2;

// Four measures of a noise suppressor, of one channel.
struct Suppression {
  Figure noiseReduction;  // dB, higher is better.
  Figure speechRetained;  // dB, higher is better; 0: all of it.
  Figure deltaSnr;        // dB, higher is better.
  Figure musical;         // Lower is better; 0: as the noise was.
};

// reference: the clean speech, or empty where it is not known; input: the noisy speech; output:
// what the suppressor made of it. Of one rate, from 8 kHz, finite. Reference and output are moved
// to the time of the input (alignment.h), to a fraction of a sample where that is more than a tenth
// from a whole one, and compared where all overlap. When somebody talks is told from the reference,
// or without one from the input (activity.h).
//   noise_reduction  energy of the input over that of the output in pauses, 120 dB at most (as the
//                    noise power level reduction of ITU-T G.160, appendix II).
//   speech_retained  gain of the speech from input to output in active blocks: |<y, s> / <x, s>| of
//                    output y and input x along the reference s, or without one along x.
//   delta_snr        SNR of the output less that of the input, each (a - p) / p of the mean energy
//                    of active blocks a and that of pauses p, 120 dB at most. Noise that is left in
//                    pauses counts, what happens to the form of speech does not. Needs a reference.
//   musical          the log kurtosis ratio of the noise in pauses (musical_noise.h).
// Unknown without 0.2 s of pauses, or of speech, or where there is nothing in them in the input.
Suppression MeasureSuppression(std::span<const float> reference, std::span<const float> input,
                               std::span<const float> output, int rate, double searchSeconds);

}  // namespace audio_measures
