#pragma once

namespace harness {

// The interleaved samples (of all channels together) in `ms` milliseconds, computed in double
// precision and truncated: 441 for 10 ms of 22050 Hz stereo.
inline unsigned BlockSamples(int rate, int channels, int ms) {
  return static_cast<unsigned>(static_cast<double>(rate) * channels * ms / 1000);
}

}  // namespace harness
