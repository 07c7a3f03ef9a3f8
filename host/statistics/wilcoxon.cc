#include "statistics/wilcoxon.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "statistics/normal.h"

namespace statistics {

namespace {

constexpr size_t kMaxExact = 50;

// The ranks of the sizes, doubled, so that those that ties share are whole.
struct Ranks {
  std::vector<int64_t> doubled = {};
  int64_t rising = 0;  // The doubled sum of those of positive differences.
  int64_t all = 0;     // The doubled sum of all.
  double ties = 0;     // Sum of t^3 - t over groups of t equal ones.
};

Ranks Rank(std::vector<double> values) {
  std::sort(values.begin(), values.end(),
            [](double a, double b) { return std::abs(a) < std::abs(b); });
  Ranks ranks;
  for (size_t start = 0; start < values.size();) {
    size_t end = start;
    while (end < values.size() && std::abs(values[end]) == std::abs(values[start])) ++end;
    const auto doubled = static_cast<int64_t>(start + 1 + end);
    for (size_t i = start; i < end; ++i) {
      ranks.doubled.push_back(doubled);
      ranks.all += doubled;
      if (values[i] > 0) ranks.rising += doubled;
    }
    const auto count = static_cast<double>(end - start);
    ranks.ties += count * count * count - count;
    start = end;
  }
  return ranks;
}

double ExactP(const Ranks& ranks) {
  // How many of all assignments of signs have each sum; below 2^53, and so exact.
  std::vector<double> ways(static_cast<size_t>(ranks.all) + 1);
  ways[0] = 1;
  size_t reached = 0;
  for (const int64_t each : ranks.doubled) {
    const auto rank = static_cast<size_t>(each);
    reached += rank;
    for (size_t sum = reached; sum >= rank; --sum) ways[sum] += ways[sum - rank];
  }
  const auto least = static_cast<size_t>(std::min(ranks.rising, ranks.all - ranks.rising));
  double tail = 0;
  for (size_t sum = 0; sum <= least; ++sum) tail += ways[sum];
  return std::min(1.0, 2 * std::ldexp(tail, -static_cast<int>(ranks.doubled.size())));
}

double NormalP(const Ranks& ranks) {
  const auto count = static_cast<double>(ranks.doubled.size());
  const double mean = count * (count + 1) / 4;
  const double variance = (count * (count + 1) * (2 * count + 1) - ranks.ties / 2) / 24;
  const double z = (static_cast<double>(ranks.rising) / 2 - mean) / std::sqrt(variance);
  return std::min(1.0, 2 * NormalShare(-std::abs(z)));
}

}  // namespace

double WilcoxonP(std::span<const double> differences) {
  std::vector<double> values;
  std::copy_if(differences.begin(), differences.end(), std::back_inserter(values),
               [](double value) { return value != 0; });
  if (values.empty()) return 1;
  const Ranks ranks = Rank(std::move(values));
  return ranks.doubled.size() <= kMaxExact ? ExactP(ranks) : NormalP(ranks);
}

}  // namespace statistics
