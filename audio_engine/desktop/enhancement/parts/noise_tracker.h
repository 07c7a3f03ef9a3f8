#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace desktop {

// Tracks the power spectrum of the background noise under speech, by the probability of speech in
// each bin (Gerkmann and Hendriks, "Unbiased MMSE-based noise power estimation with low complexity
// and low tracking delay", 2012). Takes a block every 10 ms; the first 50 ms count as noise, be
// they digital silence. Allocates in the constructor only.
class NoiseTracker {
 public:
  struct Speed {
    // The power of speech over noise that it expects where there is speech.
    float speechSnr;

    // How much of the old estimate stays in each block when the new one is higher, and lower.
    float rise;
    float fall;
  };

  NoiseTracker(size_t bins, const Speed& speed);

  // Takes the powers of the next block. `steady`: the last 300 ms are known to be noise alone, and
  // when they are much louder than the estimate they take its place at once.
  void Update(std::span<const float> power, bool steady);

  // The power of the noise in every bin, never below kFloor.
  std::span<const float> Noise() const { return m_noise; }

  static constexpr float kFloor = 1e-3f;  // Far below one bit of 16.

 private:
  float RiseOverNoise() const;
  void Learn(std::span<const float> power);

  Speed m_speed;
  std::vector<float> m_noise;

  // By bin: the mean power of about the last 100 ms, and the probability of speech, smoothed.
  std::vector<float> m_recent;
  std::vector<float> m_meanProbability;

  // How many blocks have been heard, counted up to kRecentBlocks.
  int m_blocks = 0;
};

}  // namespace desktop
