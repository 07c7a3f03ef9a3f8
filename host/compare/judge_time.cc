#include <algorithm>
#include <cmath>

#include "compare/judge_measure.h"

namespace host {

namespace {

double Quantile(std::vector<double> values, double share) {
  std::sort(values.begin(), values.end());
  const double place = share * static_cast<double>(values.size() - 1);
  const auto at = static_cast<size_t>(place);
  const double next = values[std::min(at + 1, values.size() - 1)];
  return values[at] + (place - static_cast<double>(at)) * (next - values[at]);
}

}  // namespace

TimeComparison JudgeTime(const PairedMeasure& times, const PairedResults& results,
                         std::optional<double> margin, int resamples) {
  std::vector<double> a;
  std::vector<double> b;
  std::vector<double> ratios;
  PairedMeasure logarithms = {.kind = times.kind};
  for (const FigurePair& pair : times.pairs) {
    a.push_back(pair.a);
    b.push_back(pair.b);
    if (pair.a <= 0 || pair.b <= 0) continue;
    ratios.push_back(pair.b / pair.a);
    logarithms.pairs.push_back({pair.at, std::log(pair.a), std::log(pair.b)});
  }
  TimeComparison comparison = {
      .name = times.kind.name, .unit = times.kind.unit, .count = times.pairs.size()};
  comparison.a = Quantile(a, 0.5);
  comparison.b = Quantile(b, 0.5);
  if (ratios.empty()) return comparison;
  if (comparison.a > 0) comparison.ratio = comparison.b / comparison.a;
  comparison.quartiles[0] = Quantile(ratios, 0.25);
  comparison.quartiles[1] = Quantile(ratios, 0.75);
  if (!margin) return comparison;
  comparison.margin = *margin;
  comparison.verdict =
      JudgeMeasure(logarithms, results, std::log1p(*margin), resamples).comparison.verdict;
  return comparison;
}

}  // namespace host
