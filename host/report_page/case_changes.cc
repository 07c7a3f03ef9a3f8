#include "report_page/case_changes.h"

#include <algorithm>
#include <cmath>

#include "compare/machine_figures.h"
#include "compare/margins.h"

namespace host {

namespace {

// What all figures of a case come to.
const char* WordOf(const std::vector<FigureChange>& figures) {
  const auto has = [&](Change change) {
    return std::ranges::any_of(figures,
                               [&](const FigureChange& each) { return each.change == change; });
  };
  const bool better = has(Change::kBetter);
  if (has(Change::kWorse)) return ChangeName(better ? Change::kUndecided : Change::kWorse);
  if (has(Change::kChanged)) return ChangeName(better ? Change::kUndecided : Change::kChanged);
  return ChangeName(better ? Change::kBetter : Change::kSame);
}

Change Judge(const MeasureKind& kind, bool toTruth, double difference, double margin) {
  if (std::abs(difference) <= margin) return Change::kSame;
  if (!toTruth && kind.better == "none") return Change::kChanged;
  const bool rises = difference > 0;
  return rises == (!toTruth && kind.better == "higher") ? Change::kBetter : Change::kWorse;
}

}  // namespace

CaseChanges::CaseChanges(const ResultSet& a, const ResultSet& b, const Comparison& comparison)
    : m_a(a), m_b(b), m_comparison(comparison) {
  for (const ComparedCase& one : a.cases) m_before.emplace(one.id, &one);
  for (const FallenVerdict& each : comparison.fallen) m_lost.insert(each.caseId);
  for (const NewGuard& each : comparison.guards) m_lost.insert(each.caseId);
  for (const OnlyThere& each : comparison.gone) {
    if (!each.file.empty() || !each.name.empty()) m_lost.insert(each.caseId);
  }
  for (const MeasureKind& kind : b.kinds) {
    const auto there = std::ranges::find(a.kinds, kind);
    m_kindsInA.push_back(there == a.kinds.end() ? TextTable::kNone
                                                : static_cast<int>(there - a.kinds.begin()));
    const auto declared = DeclaredMargin(a, b, kind.name);
    m_margins.push_back(declared ? *declared : MarginOfMeasure(kind.name));
  }
  for (size_t i = 0; i < b.texts.size(); ++i) {
    m_textsInA.push_back(a.texts.Find(NameInA(b.texts.Text(static_cast<int>(i)))));
  }
}

std::string CaseChanges::NameInA(const std::string& file) const {
  if (!m_a.origin.report || !m_b.origin.report) return file;
  const auto& before = m_a.cases.front().outputs;
  const auto& now = m_b.cases.front().outputs;
  if (before.size() != now.size()) return file;
  for (size_t i = 0; i < now.size(); ++i) {
    if (m_b.texts.Text(now[i].name) == file) return m_a.texts.Text(before[i].name);
  }
  return file;
}

int CaseChanges::TextInA(int text) const {
  return text == TextTable::kNone ? text : m_textsInA[static_cast<size_t>(text)];
}

FigureChange CaseChanges::FigureOf(const ComparedFigure& figure, const ComparedCase& before) const {
  const auto at = static_cast<size_t>(figure.kind);
  const bool named = figure.file != TextTable::kNone;
  const int file = TextInA(figure.file);
  if (m_kindsInA[at] == TextTable::kNone || (named && file == TextTable::kNone)) return {};
  const auto other = std::ranges::find_if(before.figures, [&](const ComparedFigure& each) {
    return each.kind == m_kindsInA[at] && each.file == file && each.channel == figure.channel;
  });
  if (other == before.figures.end() || std::isnan(other->value)) return {};
  FigureChange change = {.against = other->value};
  const MeasureKind& kind = m_b.kinds[at];
  if (std::isnan(figure.value) || IsOfTheMachine(kind)) return change;
  const double truth = std::isnan(figure.truth) ? other->truth : figure.truth;
  const bool toTruth = !std::isnan(truth) && kind.better == "none";
  const double difference = toTruth
                                ? std::abs(figure.value - truth) - std::abs(other->value - truth)
                                : figure.value - other->value;
  change.change = Judge(kind, toTruth, difference, m_margins[at]);
  return change;
}

bool CaseChanges::SameBytes(const ComparedCase& before, const ComparedCase& one) const {
  return std::ranges::all_of(one.outputs, [&](const ComparedOutput& output) {
    return std::ranges::any_of(before.outputs, [&](const ComparedOutput& other) {
      return other.name == TextInA(output.name) && other.sha256 == output.sha256;
    });
  });
}

CaseChange CaseChanges::Of(const ComparedCase& one) const {
  CaseChange change = {.word = "new",
                       .figures = std::vector<FigureChange>(one.figures.size()),
                       .newGuards = std::vector<bool>(one.guards.size())};
  const auto found = m_before.find(one.id);
  if (found == m_before.end()) return change;
  const ComparedCase& before = *found->second;
  change.verdict = before.verdict;
  bool judged = false;
  for (size_t i = 0; i < one.figures.size(); ++i) {
    change.figures[i] = FigureOf(one.figures[i], before);
    judged = judged || change.figures[i].change;
  }
  for (size_t i = 0; i < one.guards.size(); ++i) {
    const ComparedGuard known = {TextInA(one.guards[i].name), TextInA(one.guards[i].file)};
    change.newGuards[i] = std::ranges::find(before.guards, known) == before.guards.end();
  }
  if (m_lost.contains(one.id)) {
    change.word = ChangeName(Change::kWorse);
  } else if (!judged && !SameBytes(before, one)) {
    change.word = ChangeName(Change::kUndecided);
  } else {
    change.word = WordOf(change.figures);
  }
  return change;
}

std::vector<const ComparedCase*> CaseChanges::Gone() const {
  std::vector<const ComparedCase*> gone;
  for (const OnlyThere& each : m_comparison.gone) {
    if (!each.file.empty() || !each.name.empty()) continue;
    if (const auto there = m_before.find(each.caseId); there != m_before.end()) {
      gone.push_back(there->second);
    }
  }
  return gone;
}

}  // namespace host
