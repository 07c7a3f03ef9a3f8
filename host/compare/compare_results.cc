#include "compare/compare_results.h"

#include <algorithm>
#include <tuple>

#include "base/suggest.h"
#include "base/usage_error.h"
#include "compare/comparable.h"
#include "compare/judge_measure.h"
#include "compare/margins.h"

namespace host {

namespace {

// A ratio of times within this share is one of no interest.
constexpr double kTimeMargin = 0.1;

class Margins {
 public:
  Margins(const CompareRules& rules, const ResultSet& a, const ResultSet& b)
      : m_given(rules), m_a(a), m_b(b) {}

  double Of(const std::string& name) const {
    if (const auto given = Given(name)) return *given;
    const auto declared = DeclaredMargin(m_a, m_b, name);
    return declared ? *declared : MarginOfMeasure(name);
  }

  std::optional<double> OfTime(const std::string& name) const {
    if (!m_given.times) return std::nullopt;
    if (const auto given = Given(name)) return given;
    return DeclaredMargin(m_a, m_b, name).value_or(kTimeMargin);
  }

 private:
  std::optional<double> Given(const std::string& name) const {
    const auto given = m_given.margins.find(name);
    return given == m_given.margins.end() ? std::nullopt : std::optional(given->second);
  }

  const CompareRules& m_given;
  const ResultSet& m_a;
  const ResultSet& m_b;
};

void CheckMargins(const CompareRules& rules, const PairedResults& results) {
  std::vector<std::string_view> names;
  for (const auto* const list : {&results.measures, &results.times}) {
    for (const PairedMeasure& each : *list) names.emplace_back(each.kind.name);
  }
  for (const auto& [name, margin] : rules.margins) {
    if (std::find(names.begin(), names.end(), name) != names.end()) continue;
    const auto alike = NamesAlike(name, names);
    throw UsageError{"--margin: no figure of both is called " + name +
                     (alike.empty() ? "" : "; did you mean " + std::string(alike.front()) + "?")};
  }
}

// The worst first: what decides before what does not, then the surest.
bool Before(const JudgedMeasure& one, const JudgedMeasure& other) {
  const auto rank = [](const JudgedMeasure& each) {
    const MeasureComparison& comparison = each.comparison;
    const bool worse = IsWorse(comparison.verdict);
    return std::tuple(!(worse && comparison.holds), !worse, comparison.verdict,
                      each.level.value_or(0), comparison.kind.name, comparison.kind.unit);
  };
  return rank(one) < rank(other);
}

bool SomethingLost(const Comparison& comparison) {
  return !comparison.gone.empty() || !comparison.fallen.empty() || !comparison.guards.empty();
}

// The verdict of the whole.
Change Overall(const Comparison& comparison) {
  if (SomethingLost(comparison)) return Change::kWorse;
  bool better = false;
  bool same = comparison.otherBytes == 0 || !comparison.measures.empty();
  const auto add = [&](Change verdict, bool holds) {
    better = better || (verdict == Change::kBetter && holds);
    same = same && verdict == Change::kSame;
    return IsWorse(verdict) && holds;
  };
  for (const MeasureComparison& each : comparison.measures) {
    if (add(each.verdict, each.holds)) return Change::kWorse;
  }
  for (const TimeComparison& each : comparison.times) {
    if (each.verdict && add(*each.verdict, true)) return Change::kWorse;
  }
  if (better) return Change::kBetter;
  return same ? Change::kSame : Change::kUndecided;
}

bool Names(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

const char* ChangeName(Change change) {
  switch (change) {
    case Change::kWorse:
      return "worse";
    case Change::kChanged:
      return "changed";
    case Change::kUndecided:
      return "undecided";
    case Change::kBetter:
      return "better";
    case Change::kSame:
      break;
  }
  return "same";
}

bool IsWorse(Change change) { return change == Change::kWorse || change == Change::kChanged; }

Comparison CompareResults(const ResultSet& a, const ResultSet& b, const CompareRules& rules) {
  CheckComparable(a, b);
  PairedResults results = PairResults(a, b);
  CheckMargins(rules, results);
  const Margins margins(rules, a, b);
  std::vector<JudgedMeasure> judged;
  for (const PairedMeasure& each : results.measures) {
    judged.push_back(JudgeMeasure(each, results, margins.Of(each.kind.name), rules.resamples));
  }
  Correct(judged);
  std::sort(judged.begin(), judged.end(), Before);

  Comparison comparison = {.a = a.origin, .b = b.origin};
  for (JudgedMeasure& each : judged) {
    const std::string& name = each.comparison.kind.name;
    each.comparison.untrusted = Names(a.untrusted, name) || Names(b.untrusted, name);
    comparison.measures.push_back(std::move(each.comparison));
  }
  for (const PairedMeasure& each : results.times) {
    comparison.times.push_back(
        JudgeTime(each, results, margins.OfTime(each.kind.name), rules.resamples));
  }
  comparison.gone = std::move(results.gone);
  comparison.added = std::move(results.added);
  comparison.fallen = std::move(results.fallen);
  comparison.guards = std::move(results.guards);
  comparison.cases = results.cases.size();
  comparison.files = results.files;
  comparison.sameBytes = results.sameBytes;
  comparison.otherBytes = results.otherBytes;
  comparison.verdict = Overall(comparison);
  return comparison;
}

}  // namespace host
