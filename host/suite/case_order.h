#pragma once

#include <optional>
#include <string>
#include <vector>

#include "suite/suite_case.h"

namespace host {

// Which cases read what others leave.
class CaseOrder {
 public:
  // Throws UsageError when two cases have the same id, when one follows a case that there is not,
  // or when cases follow each other in a circle. `cases` stays alive.
  explicit CaseOrder(const std::vector<SuiteCase>& cases);

  // The places in the list of the cases that must have ended before this one: `after` and `sameAs`.
  const std::vector<size_t>& Before(size_t at) const { return m_before[at]; }

  // The place of a case that there is.
  size_t Find(const std::string& id) const { return *Place(id); }

 private:
  // Of a case; nothing when there is none.
  std::optional<size_t> Place(const std::string& id) const;
  void Sort();
  void Check(size_t at, std::vector<int>& states) const;

  const std::vector<SuiteCase>& m_cases;
  std::vector<size_t> m_sorted;  // The places in the list, in the order of the ids.
  std::vector<std::vector<size_t>> m_before;
};

}  // namespace host
