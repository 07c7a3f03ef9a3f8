#include "suite/case_order.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "base/suggest.h"
#include "base/usage_error.h"

namespace host {

namespace {

std::string NoCase(const SuiteCase& from, const std::string& id,
                   const std::vector<SuiteCase>& cases, const std::vector<size_t>& sorted) {
  std::vector<std::string_view> names;
  for (const size_t place : sorted) names.emplace_back(cases[place].id);
  const auto alike = NamesAlike(id, names);
  return from.at + "after: no case is called \"" + id + "\"" +
         (alike.empty() ? "" : "; did you mean \"" + std::string(alike.front()) + "\"?");
}

}  // namespace

CaseOrder::CaseOrder(const std::vector<SuiteCase>& cases) : m_cases(cases), m_before(cases.size()) {
  Sort();
  for (size_t at = 0; at < cases.size(); ++at) {
    std::vector<std::string> ids = cases[at].after;
    if (!cases[at].sameAs.empty()) ids.push_back(cases[at].sameAs);
    for (const std::string& id : ids) {
      const auto there = Place(id);
      if (!there) throw UsageError{NoCase(cases[at], id, cases, m_sorted)};
      m_before[at].push_back(*there);
    }
  }
  std::vector<int> states(cases.size());
  for (size_t at = 0; at < cases.size(); ++at) Check(at, states);
}

void CaseOrder::Sort() {
  m_sorted.resize(m_cases.size());
  std::iota(m_sorted.begin(), m_sorted.end(), size_t{0});
  std::stable_sort(m_sorted.begin(), m_sorted.end(),
                   [this](size_t a, size_t b) { return m_cases[a].id < m_cases[b].id; });
  // The first case whose id an earlier one has.
  size_t second = m_cases.size();
  size_t first = 0;
  for (size_t i = 1; i < m_sorted.size(); ++i) {
    if (m_sorted[i] >= second || m_cases[m_sorted[i]].id != m_cases[m_sorted[i - 1]].id) continue;
    second = m_sorted[i];
    first = m_sorted[i - 1];
  }
  if (second == m_cases.size()) return;
  const SuiteCase& one = m_cases[second];
  const std::string& other = m_cases[first].at;
  const std::string where = other == one.at || other.size() < 2
                                ? ""
                                : "; the other is at " + other.substr(0, other.size() - 2);
  throw UsageError{one.at + "two cases have the id \"" + one.id + "\"" + where};
}

std::optional<size_t> CaseOrder::Place(const std::string& id) const {
  const auto there = std::lower_bound(
      m_sorted.begin(), m_sorted.end(), id,
      [this](size_t at, const std::string& name) { return m_cases[at].id < name; });
  if (there == m_sorted.end() || m_cases[*there].id != id) return std::nullopt;
  return *there;
}

// Walks what a case follows in depth: 1 stands for a case on the way, 2 for one that is right. The
// way is a list of its own, because a chain of cases may be long.
void CaseOrder::Check(size_t at, std::vector<int>& states) const {
  if (states[at] == 2) return;
  std::vector<std::pair<size_t, size_t>> way = {{at, 0}};  // A case, and how many were looked at.
  states[at] = 1;
  while (!way.empty()) {
    auto& [here, looked] = way.back();
    if (looked == m_before[here].size()) {
      states[here] = 2;
      way.pop_back();
      continue;
    }
    const size_t next = m_before[here][looked++];
    if (states[next] == 2) continue;
    if (states[next] == 1) {
      std::string circle;
      for (const auto& [step, count] : way) {
        if (step == next || !circle.empty()) circle += m_cases[step].id + " after ";
      }
      circle += m_cases[next].id;
      throw UsageError{m_cases[next].at + "cases follow each other in a circle: " + circle};
    }
    states[next] = 1;
    way.emplace_back(next, 0);
  }
}

}  // namespace host
