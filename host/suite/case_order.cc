#include "suite/case_order.h"

#include <string_view>

#include "base/suggest.h"
#include "base/usage_error.h"

namespace host {

namespace {

std::string NoCase(const SuiteCase& from, const std::string& id,
                   const std::map<std::string, size_t>& places) {
  std::vector<std::string_view> names;
  for (const auto& [name, place] : places) names.push_back(name);
  const auto alike = NamesAlike(id, names);
  return from.at + "after: no case is called \"" + id + "\"" +
         (alike.empty() ? "" : "; did you mean \"" + std::string(alike.front()) + "\"?");
}

}  // namespace

CaseOrder::CaseOrder(const std::vector<SuiteCase>& cases) : m_cases(cases), m_before(cases.size()) {
  for (size_t at = 0; at < cases.size(); ++at) {
    const auto [there, isNew] = m_places.emplace(cases[at].id, at);
    if (isNew) continue;
    const std::string& other = cases[there->second].at;
    const std::string where = other == cases[at].at || other.size() < 2
                                  ? ""
                                  : "; the other is at " + other.substr(0, other.size() - 2);
    throw UsageError{cases[at].at + "two cases have the id \"" + cases[at].id + "\"" + where};
  }
  for (size_t at = 0; at < cases.size(); ++at) {
    std::vector<std::string> ids = cases[at].after;
    if (!cases[at].sameAs.empty()) ids.push_back(cases[at].sameAs);
    for (const std::string& id : ids) {
      const auto there = m_places.find(id);
      if (there == m_places.end()) throw UsageError{NoCase(cases[at], id, m_places)};
      m_before[at].push_back(there->second);
    }
  }
  std::vector<int> states(cases.size());
  for (size_t at = 0; at < cases.size(); ++at) Check(at, states);
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
