#pragma once

#include <optional>
#include <span>

#include "statistics/resampled_means.h"

namespace statistics {

// Fewer independent things than this give no interval.
inline constexpr size_t kMinClusters = 8;
// From this many on the interval is Student's.
inline constexpr size_t kManyClusters = 1000;

// What is known of a mean whose values come in clusters that are independent of each other.
class MeanEstimate {
 public:
  // At least one cluster. `constant` says that all values are equal, and then the interval is that
  // value however many there are.
  MeanEstimate(std::span<const Cluster> clusters, bool constant, int resamples);

  double mean() const { return m_mean; }

  // With this confidence; nothing where there are too few clusters.
  std::optional<Interval> At(double confidence) const;

  // The least one-sided level at which the mean lies below, or above, `value`: the greater one of
  // those of the resamples and of Student's t, whose tails are right where resamples of few things
  // are too short. 1 where there are too few clusters.
  double LevelBelow(double value) const;
  double LevelAbove(double value) const;

 private:
  enum class Kind { kConstant, kFew, kResampled, kMany };

  Kind m_kind;
  double m_mean;
  double m_error = 0;  // Standard error of the mean.
  double m_freedom = 0;
  std::optional<ResampledMeans> m_resampled = {};
};

}  // namespace statistics
