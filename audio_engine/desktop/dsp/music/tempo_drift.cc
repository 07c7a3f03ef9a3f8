#include "desktop/dsp/music/tempo_drift.h"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

// Two errors in a row on one side are a drift from this size on, unless the second has shrunk to
// this share of the first.
constexpr double kLeastDrift = 0.02;
constexpr double kStays = 0.95;

// What an error adds to the bend, what stays of it from beat to beat, and the least there is.
constexpr double kErrorCounts = 0.2;
constexpr double kFade = 0.97;
constexpr double kLeastBend = 0.003;

}  // namespace

void TempoDrift::Take(double error) {
  const double least = std::min(std::fabs(error), std::fabs(m_error));
  const bool drifts =
      error * m_error > 0 && least > kLeastDrift && std::fabs(error) > kStays * std::fabs(m_error);
  if (drifts || m_bend != 0) m_bend += kErrorCounts * error;
  m_bend = std::clamp(kFade * m_bend, -kMostBend, kMostBend);
  if (std::fabs(m_bend) < kLeastBend) m_bend = 0;
  m_error = error;
}

}  // namespace desktop
