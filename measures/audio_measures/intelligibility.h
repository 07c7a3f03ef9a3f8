#pragma once

#include <span>
#include <vector>

#include "audio_measures/figure.h"

namespace audio_measures {

inline constexpr int kStoiVersion = 2;
inline constexpr int kEstoiVersion = 2;
inline constexpr int kIntelligibilityRate = 10000;  // Hz

struct Intelligibility {
  Figure stoi;
  Figure estoi;
};

// stoi: C. Taal, R. Hendriks, R. Heusdens, J. Jensen, "An algorithm for intelligibility prediction
// of time-frequency weighted noisy speech", IEEE Trans. ASLP 19(7), 2011. estoi: J. Jensen,
// C. Taal, "An algorithm for predicting the intelligibility of speech masked by modulated noise
// maskers", IEEE/ACM Trans. ASLP 24(11), 2016. From about 0 to 1, of speech at 10 kHz: blocks of
// 256 samples overlapped by half, windowed by sin^2(pi i / 257) with i from 1 to 256, transforms of
// 512, 15 third octaves from 150 Hz, segments of 30 blocks, blocks more than 40 dB below the
// strongest one of the reference left out. Both aligned by who calls (aligned_pair.h), of one
// length, finite. Unknown with fewer than 30 blocks left, and where either is silent.
Intelligibility IntelligibilityOf(std::span<const float> reference, std::span<const float> signal);

// A signal at 10 kHz for the above, from a rate from 8 kHz on (libsoxr, very high quality).
std::vector<float> AtIntelligibilityRate(std::span<const float> samples, int rate);

}  // namespace audio_measures
