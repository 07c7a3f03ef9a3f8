#include "statistics/resampled_means.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "statistics/normal.h"
#include "statistics/random.h"

namespace statistics {

namespace {

constexpr uint64_t kSeed = 20240229;

std::vector<double> Resample(std::span<const Cluster> clusters, int resamples) {
  Random random(kSeed);
  std::vector<double> means(static_cast<size_t>(resamples));
  const auto choices = static_cast<uint64_t>(clusters.size());
  for (double& mean : means) {
    Cluster all = {0, 0};
    uint64_t bits = 0;
    for (uint64_t i = 0; i < choices; ++i) {
      // Each half of a random number chooses one.
      bits = i % 2 == 0 ? random.Next() : bits >> 32;
      const Cluster& one = clusters[((bits & UINT32_MAX) * choices) >> 32];
      all.sum += one.sum;
      all.count += one.count;
    }
    mean = all.sum / all.count;
  }
  std::sort(means.begin(), means.end());
  return means;
}

double JackknifeAcceleration(std::span<const Cluster> clusters) {
  Cluster all = {0, 0};
  for (const Cluster& one : clusters) {
    all.sum += one.sum;
    all.count += one.count;
  }
  std::vector<double> without;
  double centre = 0;
  for (const Cluster& one : clusters) {
    without.push_back((all.sum - one.sum) / (all.count - one.count));
    centre += without.back() / static_cast<double>(clusters.size());
  }
  double squares = 0;
  double cubes = 0;
  for (const double mean : without) {
    const double off = centre - mean;
    squares += off * off;
    cubes += off * off * off;
  }
  return squares > 0 ? cubes / (6 * std::pow(squares, 1.5)) : 0;
}

}  // namespace

double MeanOf(std::span<const Cluster> clusters) {
  Cluster all = {0, 0};
  for (const Cluster& one : clusters) {
    all.sum += one.sum;
    all.count += one.count;
  }
  return all.sum / all.count;
}

ResampledMeans::ResampledMeans(std::span<const Cluster> clusters, int resamples)
    : m_means(Resample(clusters, resamples)), m_acceleration(JackknifeAcceleration(clusters)) {
  const auto [first, last] = std::equal_range(m_means.begin(), m_means.end(), MeanOf(clusters));
  const auto total = static_cast<double>(resamples);
  const auto below = static_cast<double>((first - m_means.begin()) + (last - m_means.begin())) / 2;
  m_bias = NormalQuantile(std::clamp(below, 0.5, total - 0.5) / total);
}

double ResampledMeans::End(double share) const {
  const double z = m_bias + NormalQuantile(share);
  // The acceleration is at most 1/6, so that only absurd biases come near the pole.
  const double slope = std::max(1 - m_acceleration * z, 1e-3);
  const double corrected = NormalShare(m_bias + z / slope);
  // Elementary functions differ in their last digit from machine to machine.
  const double stable = std::nearbyint(corrected * 0x1p30) * 0x1p-30;
  const double place = stable * static_cast<double>(m_means.size() - 1);
  const auto at = static_cast<size_t>(place);
  const double next = m_means[std::min(at + 1, m_means.size() - 1)];
  return m_means[at] + (place - static_cast<double>(at)) * (next - m_means[at]);
}

Interval ResampledMeans::At(double confidence) const {
  return {End((1 - confidence) / 2), End((1 + confidence) / 2)};
}

double ResampledMeans::Level(double shareBeyond, double sign) const {
  if (shareBeyond >= 1) return 0;
  if (shareBeyond <= 0) return 1;
  const double off = sign * NormalQuantile(shareBeyond) - m_bias;
  const double slope = 1 + m_acceleration * off;
  // Beyond what the correction reaches there is no level.
  if (slope <= 0) return sign * off > 0 ? 0 : 1;
  return NormalShare(-sign * (off / slope - m_bias));
}

double ResampledMeans::LevelBelow(double value) const {
  const auto beyond = std::lower_bound(m_means.begin(), m_means.end(), value) - m_means.begin();
  return Level(static_cast<double>(beyond) / static_cast<double>(m_means.size()), 1);
}

double ResampledMeans::LevelAbove(double value) const {
  const auto beyond = m_means.end() - std::upper_bound(m_means.begin(), m_means.end(), value);
  return Level(static_cast<double>(beyond) / static_cast<double>(m_means.size()), -1);
}

}  // namespace statistics
