#include "compare/judge_measure.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "statistics/holm.h"
#include "statistics/mean_estimate.h"
#include "statistics/wilcoxon.h"

namespace host {

namespace {

constexpr double kConfidence = 0.95;
// Differences that are smaller, in shares of the figures, are those of the last digits.
constexpr double kNoDifference = 1e-12;
// With fewer things than this the interval of chance alone lies on the wrong side in more than one
// table of twenty where tails are as long as those of Laplace's distribution.
constexpr size_t kSoundThings = 20;

// The differences of a measure, turned so that more is better; not turned where neither is.
struct Differences {
  std::vector<double> turned = {};
  std::vector<statistics::Cluster> clusters = {};
  bool constant = true;
  bool shared = false;  // Some cases share a cluster.
};

double Difference(const FigurePair& pair) {
  const double difference = pair.b - pair.a;
  const double size = std::max(std::abs(pair.a), std::abs(pair.b));
  return std::abs(difference) <= kNoDifference * size ? 0 : difference;
}

Differences DifferencesOf(const PairedMeasure& measure, const PairedResults& results, double sign) {
  Differences all;
  std::map<size_t, statistics::Cluster> byCluster;
  double size = 0;
  for (const FigurePair& pair : measure.pairs) {
    const double turned = sign * Difference(pair);
    all.turned.push_back(turned);
    size = std::max({size, std::abs(pair.a), std::abs(pair.b)});
    all.constant = all.constant && std::abs(turned - all.turned.front()) <= kNoDifference * size;
    if (results.clusters.empty()) {
      all.clusters.push_back({turned, 1});
      continue;
    }
    statistics::Cluster& cluster =
        byCluster.try_emplace(results.clusters[pair.at], statistics::Cluster{0, 0}).first->second;
    cluster.sum += turned;
    cluster.count += 1;
  }
  for (const auto& [unused, cluster] : byCluster) all.clusters.push_back(cluster);
  all.shared = !results.clusters.empty();
  return all;
}

double ClusteredP(const Differences& differences) {
  if (!differences.shared) return statistics::WilcoxonP(differences.turned);
  std::vector<double> means;
  for (const statistics::Cluster& one : differences.clusters) means.push_back(one.sum / one.count);
  return statistics::WilcoxonP(means);
}

// The verdict where there is an interval of the turned difference.
Change ByInterval(const statistics::Interval& interval, double margin, bool neither) {
  if (interval.high < -margin) return neither ? Change::kChanged : Change::kWorse;
  if (interval.low > margin) return neither ? Change::kChanged : Change::kBetter;
  const bool within = interval.low >= -margin && interval.high <= margin;
  return within ? Change::kSame : Change::kUndecided;
}

// The verdict where there are too few for an interval: each by its margin.
Change ByEach(const std::vector<double>& turned, double margin, bool neither) {
  const auto all = [&](auto beyond) { return std::all_of(turned.begin(), turned.end(), beyond); };
  if (neither) {
    return all([&](double each) { return std::abs(each) > margin; }) ? Change::kChanged
                                                                     : Change::kUndecided;
  }
  if (all([&](double each) { return each < -margin; })) return Change::kWorse;
  return all([&](double each) { return each > margin; }) ? Change::kBetter : Change::kUndecided;
}

// The number of independent things with which an interval that shrinks as the root of their number
// would decide, if their mean stayed where it is.
std::optional<size_t> MoreToDecide(size_t count, double mean, const statistics::Interval& interval,
                                   double margin) {
  const double distance = std::abs(std::abs(mean) - margin);
  const double half = (interval.high - interval.low) / 2;
  constexpr double kMost = 1e6;
  if (distance <= 0) return std::nullopt;
  const double needed = std::ceil(static_cast<double>(count) * std::pow(half / distance, 2)) + 1;
  if (needed > kMost) return std::nullopt;
  const auto whole = static_cast<size_t>(needed);
  return whole > count ? whole - count : 1;
}

// Means, wins, losses and the worst case. Where neither more nor less is better, every case beyond
// the margin is a loss.
void Describe(const PairedMeasure& measure, const PairedResults& results,
              const Differences& differences, bool neither, MeasureComparison& comparison) {
  const auto count = static_cast<double>(measure.pairs.size());
  double worst = 0;
  for (size_t i = 0; i < measure.pairs.size(); ++i) {
    const double turned = differences.turned[i];
    comparison.a += measure.pairs[i].a / count;
    comparison.b += measure.pairs[i].b / count;
    comparison.difference += Difference(measure.pairs[i]) / count;
    const bool lost = neither ? std::abs(turned) > comparison.margin : turned < 0;
    comparison.losses += lost ? 1 : 0;
    comparison.wins += !neither && turned > 0 ? 1 : 0;
    const double rank = neither ? -std::abs(turned) : turned;
    if (rank >= worst) continue;
    worst = rank;
    comparison.worst = Difference(measure.pairs[i]);
    comparison.worstCase = results.cases[measure.pairs[i].at]->id;
  }
}

}  // namespace

JudgedMeasure JudgeMeasure(const PairedMeasure& measure, const PairedResults& results,
                           double margin, int resamples) {
  const bool neither = measure.kind.better == "none" && !measure.toTruth;
  const double sign = measure.kind.better == "lower" || measure.toTruth ? -1 : 1;
  const Differences differences = DifferencesOf(measure, results, sign);
  JudgedMeasure judged;
  MeasureComparison& comparison = judged.comparison;
  comparison.kind = measure.kind;
  comparison.toTruth = measure.toTruth;
  comparison.margin = margin;
  comparison.count = measure.pairs.size();
  if (differences.shared) comparison.clusters = differences.clusters.size();
  Describe(measure, results, differences, neither, comparison);
  comparison.p = ClusteredP(differences);
  judged.things = differences.clusters.size();

  const statistics::MeanEstimate estimate(differences.clusters, differences.constant, resamples);
  const auto interval = estimate.At(kConfidence);
  comparison.interval = interval.has_value();
  if (!interval) {
    comparison.verdict = ByEach(differences.turned, margin, neither);
    comparison.more = statistics::kMinClusters - differences.clusters.size();
    if (comparison.verdict != Change::kUndecided) comparison.more.reset();
    return judged;
  }
  comparison.low = sign > 0 ? interval->low : -interval->high;
  comparison.high = sign > 0 ? interval->high : -interval->low;
  comparison.verdict = ByInterval(*interval, margin, neither);
  if (comparison.verdict == Change::kUndecided) {
    comparison.more = MoreToDecide(differences.clusters.size(), estimate.mean(), *interval, margin);
  }
  if (differences.constant) return judged;
  judged.level =
      std::min(1.0, 2 * std::min(estimate.LevelBelow(-margin), estimate.LevelAbove(margin)));
  return judged;
}

void Correct(std::span<JudgedMeasure> measures) {
  std::vector<double> levels;
  for (const JudgedMeasure& each : measures) {
    if (each.level) levels.push_back(*each.level);
  }
  const std::vector<double> corrected = statistics::HolmCorrected(levels);
  size_t at = 0;
  for (JudgedMeasure& each : measures) {
    MeasureComparison& comparison = each.comparison;
    comparison.holds = comparison.verdict != Change::kUndecided;
    if (!each.level) continue;
    const double level = corrected[at++];
    // A single measure needs no correction.
    if (levels.size() == 1 && each.things >= kSoundThings) continue;
    if (comparison.verdict == Change::kSame) continue;
    comparison.holds = comparison.holds && level <= 1 - kConfidence;
  }
}

}  // namespace host
