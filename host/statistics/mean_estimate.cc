#include "statistics/mean_estimate.h"

#include <algorithm>
#include <cmath>

#include "statistics/student.h"

namespace statistics {

namespace {

// The standard error of the mean of clusters that may differ in size: that of a ratio (Cochran,
// Sampling techniques, 1977, 6.3), which for clusters of one value is the usual one.
double ErrorOf(std::span<const Cluster> clusters, double mean) {
  double squares = 0;
  double count = 0;
  for (const Cluster& one : clusters) {
    const double off = one.sum - mean * one.count;
    squares += off * off;
    count += one.count;
  }
  const auto number = static_cast<double>(clusters.size());
  return std::sqrt(squares * number / (number - 1)) / count;
}

}  // namespace

MeanEstimate::MeanEstimate(std::span<const Cluster> clusters, bool constant, int resamples)
    : m_kind(Kind::kConstant), m_mean(MeanOf(clusters)) {
  if (constant) return;
  m_kind = Kind::kFew;
  if (clusters.size() < kMinClusters) return;
  m_error = ErrorOf(clusters, m_mean);
  m_freedom = static_cast<double>(clusters.size() - 1);
  if (m_error <= 0) {
    m_kind = Kind::kConstant;
  } else if (clusters.size() >= kManyClusters) {
    m_kind = Kind::kMany;
  } else {
    m_kind = Kind::kResampled;
    m_resampled.emplace(clusters, resamples);
  }
}

std::optional<Interval> MeanEstimate::At(double confidence) const {
  switch (m_kind) {
    case Kind::kConstant:
      return Interval{m_mean, m_mean};
    case Kind::kFew:
      return std::nullopt;
    case Kind::kResampled:
      return m_resampled->At(confidence);
    case Kind::kMany:
      break;
  }
  const double width = m_error * StudentQuantile((1 + confidence) / 2, m_freedom);
  return Interval{m_mean - width, m_mean + width};
}

double MeanEstimate::LevelBelow(double value) const {
  if (m_kind == Kind::kConstant) return m_mean < value ? 0 : 1;
  if (m_kind == Kind::kFew) return 1;
  const double level = StudentShare((m_mean - value) / m_error, m_freedom);
  return m_kind == Kind::kMany ? level : std::max(level, m_resampled->LevelBelow(value));
}

double MeanEstimate::LevelAbove(double value) const {
  if (m_kind == Kind::kConstant) return m_mean > value ? 0 : 1;
  if (m_kind == Kind::kFew) return 1;
  const double level = StudentShare((value - m_mean) / m_error, m_freedom);
  return m_kind == Kind::kMany ? level : std::max(level, m_resampled->LevelAbove(value));
}

}  // namespace statistics
