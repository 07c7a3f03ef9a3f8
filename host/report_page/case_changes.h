#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "compare/comparison.h"
#include "compare/result_set.h"

namespace host {

// A figure of a case beside the same one of the other run.
struct FigureChange {
  std::optional<double> against = {};
  std::optional<Change> change = {};  // Nothing where none is told: of times, and without a value.
};

// A case of a run, B, beside the same case of another one, A.
struct CaseChange {
  std::string word = {};                   // The name of a Change; "new" where A has no such case.
  std::string verdict = {};                // Of A; empty without one.
  std::vector<FigureChange> figures = {};  // As the case of B has them.
  std::vector<bool> newGuards = {};        // The same; true where A does not hit it.
};

// What each case of B has to do with A. One case is one sample: its figures are worse or better
// when they differ by more than the margin of their measure, which says nothing of chance.
class CaseChanges {
 public:
  // All three outlive this object.
  CaseChanges(const ResultSet& a, const ResultSet& b, const Comparison& comparison);

  CaseChange Of(const ComparedCase& one) const;

  // The cases that only A has.
  std::vector<const ComparedCase*> Gone() const;

  // The name by which A knows a file of B: of two runs, the output at the same place.
  std::string NameInA(const std::string& file) const;

 private:
  FigureChange FigureOf(const ComparedFigure& figure, const ComparedCase& before) const;
  bool SameBytes(const ComparedCase& before, const ComparedCase& one) const;
  int TextInA(int text) const;

  const ResultSet& m_a;
  const ResultSet& m_b;
  const Comparison& m_comparison;
  std::unordered_map<std::string_view, const ComparedCase*> m_before;
  std::unordered_set<std::string_view> m_lost;  // Ids of cases that have lost something.
  std::vector<int> m_kindsInA;                  // By those of B; TextTable::kNone for none.
  std::vector<int> m_textsInA;
  std::vector<double> m_margins;  // By the kinds of B.
};

}  // namespace host
