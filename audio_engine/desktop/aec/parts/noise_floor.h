#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace desktop {

// The least power, by bin, of the last 0.75 to 1.5 s of blocks of 10 ms: the noise, because speech
// pauses (Martin, "Noise power spectral density estimation based on optimal smoothing and minimum
// statistics", 2001). Lies some dB below the noise's mean. Allocates in the constructor only.
class NoiseFloor {
 public:
  explicit NoiseFloor(size_t bins) : m_smooth(bins), m_before(bins), m_now(bins) {}

  void Follow(const std::vector<float>& power) {
    const bool starts = m_blocks < kFirstBlocks;
    const bool turns = m_blocks % kBlocks == 0;
    for (size_t i = 0; i < power.size(); ++i) {
      m_smooth[i] += kRate * (power[i] - m_smooth[i]);
      if (starts || turns) {
        m_before[i] = starts ? m_smooth[i] : m_now[i];
        m_now[i] = m_smooth[i];
      }
      m_now[i] = std::min(m_now[i], m_smooth[i]);
    }
    ++m_blocks;
  }

  float At(size_t bin) const { return std::min(m_now[bin], m_before[bin]); }

 private:
  static constexpr float kRate = 0.2f;
  static constexpr size_t kBlocks = 75;
  static constexpr size_t kFirstBlocks = 10;

  std::vector<float> m_smooth;
  std::vector<float> m_before;
  std::vector<float> m_now;
  size_t m_blocks = 0;
};

}  // namespace desktop
