#pragma once

#include <algorithm>
#include <cmath>

namespace desktop {

// How much of the power of a source turns up in another signal, told by how the two waver together:
// a part that has nothing to do with the source, such as a near talker, does not count (Valin, "On
// adjusting the learning rate in frequency domain echo cancellation with double-talk", 2007).
class PowerLeak {
 public:
  explicit PowerLeak(float first) : m_share(first) {}

  // Takes the powers of a block. The rates, 0 to 1, say how much of the means and of the share a
  // block makes.
  void Follow(float signal, float source, float meanRate, float rate) {
    m_signal += meanRate * (signal - m_signal);
    m_source += meanRate * (source - m_source);
    const float waver = source - m_source;
    const float signalWaver = signal - m_signal;
    m_common += rate * (signalWaver * waver - m_common);
    m_square += rate * (waver * waver - m_square);
    m_signalSquare += rate * (signalWaver * signalWaver - m_signalSquare);
    if (m_square > 0) m_share = m_common / m_square;
  }

  // The power in the signal by power of the source, between two limits.
  float Share(float least, float most) const { return std::clamp(m_share, least, most); }

  // How much the two waver together, -1 to 1. Strangers do so a little, by chance.
  float Correlation() const {
    const float both = std::sqrt(m_square) * std::sqrt(m_signalSquare);
    return both > 0 ? m_common / both : 0;
  }

 private:
  float m_signal = 0;
  float m_source = 0;
  float m_common = 0;
  float m_square = 0;
  float m_signalSquare = 0;
  float m_share;
};

}  // namespace desktop
