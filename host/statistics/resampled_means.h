#pragma once

#include <span>
#include <vector>

namespace statistics {

// What belongs together and stands for one independent thing: the sum of its values, and how many
// they are.
struct Cluster {
  double sum = 0;
  double count = 1;
};

struct Interval {
  double low = 0;
  double high = 0;
};

// The mean of all values of these clusters.
double MeanOf(std::span<const Cluster> clusters);

// The means of bootstrap resamples, which draw whole clusters, corrected for bias and acceleration
// (BCa: Efron, Better bootstrap confidence intervals, JASA 82, 1987). The acceleration is that of
// the jackknife that leaves out whole clusters. The resamples are the same on every machine.
class ResampledMeans {
 public:
  // At least 2 clusters, not all of one mean.
  ResampledMeans(std::span<const Cluster> clusters, int resamples);

  // Where the mean lies with this confidence.
  Interval At(double confidence) const;

  // The least one-sided level at which the mean lies below, or above, `value`. Where every resample
  // lies there it is 0.
  double LevelBelow(double value) const;
  double LevelAbove(double value) const;

 private:
  double End(double share) const;
  double Level(double shareBeyond, double sign) const;

  std::vector<double> m_means;  // Sorted.
  double m_bias = 0;
  double m_acceleration = 0;
};

}  // namespace statistics
