#pragma once

#include <cstddef>
#include <vector>

namespace desktop {

// One channel out of several, for what only listens: their mean, in which a channel that runs
// against the ones before it counts with its sign turned. So none cancels another, as the two of a
// balanced or centre-cancelled signal would; channels that agree, or have nothing in common, are
// added as they are.
class AlignedSum {
 public:
  // rate: Hz. Throws when there is no memory.
  AlignedSum(int rate, size_t channels);

  // Returns the mean of a frame, within the range of its samples.
  float Add(const short* frame);

 private:
  struct Channel {
    float sign = 1;

    // Averages over 200 ms: the product with the sum of the channels before, and both powers.
    double product = 0;
    double power = 0;
    double before = 0;
  };

  const double m_share;
  std::vector<Channel> m_channels;

  // Frames until the averages say anything.
  size_t m_wait;
};

}  // namespace desktop
