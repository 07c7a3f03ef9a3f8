#include "desktop/dsp/aligned_sum.h"

#include <cmath>

#include "desktop/common/counts.h"

namespace desktop {
namespace {

constexpr double kMemorySeconds = 0.2;
constexpr double kWaitSeconds = 0.02;

// From this correlation on two channels run against each other.
constexpr double kAgainst = 0.5;

}  // namespace

AlignedSum::AlignedSum(int rate, size_t channels)
    : m_share(1 / (kMemorySeconds * rate)),
      m_channels(channels),
      m_wait(static_cast<size_t>(kWaitSeconds * rate)) {}

float AlignedSum::Add(const short* frame) {
  if (m_wait > 0) --m_wait;
  double sum = frame[0];
  for (size_t c = 1; c < m_channels.size(); ++c) {
    Channel& channel = m_channels[c];
    const double sample = frame[c];
    channel.product += m_share * (sum * sample - channel.product);
    channel.power += m_share * (sample * sample - channel.power);
    channel.before += m_share * (sum * sum - channel.before);
    const double along = channel.product * static_cast<double>(channel.sign);
    if (m_wait == 0 && along < -kAgainst * std::sqrt(channel.power * channel.before)) {
      channel.sign = -channel.sign;
    }
    sum += static_cast<double>(channel.sign) * sample;
  }
  return static_cast<float>(sum / Real(m_channels.size()));
}

}  // namespace desktop
