#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/json_parts.h"
#include "engines/engine.h"
#include "suite/case_order.h"
#include "suite/catalogue_cases.h"
#include "suite/suite_case.h"

namespace host {

// The cases of a suite as they run, and where.
struct SuitePlace {
  const std::vector<SuiteCase>& cases;
  const CaseOrder& order;
  std::string folder;  // Of the results.
  std::string origin;  // See OriginText().
  DemoRecordings demo;
  std::string scratch = {};  // Folder in which cases run; empty: in that of the results.

  std::string Workspace(const std::string& id) const { return folder + "/cases/" + id; }
  std::string Report(const std::string& id) const { return folder + "/reports/" + id + ".json"; }
  std::string Output(const std::string& id) const { return folder + "/reports/" + id + ".txt"; }
};

// Bench, engine and this very program, as text.
std::string OriginText(const Engine& engine);

// All that decides about the result of a case: routine, words, inputs with their content, limits,
// engine and bench, and the same of the cases that it reads from. Two that differ in it may differ
// in their results.
std::string CaseFingerprint(const SuitePlace& suite, size_t at);

// Reads the sources that other cases have as well, so that none of the processes of these cases,
// which are made of this one, needs to read them for a digest of its own. Leaves out long ones.
class SharedSources {
 public:
  explicit SharedSources(const std::vector<SuiteCase>& cases);
  void ReadOf(const SuiteCase& one) const;

 private:
  // What those hash to that several inputs have, sorted: many cases have many sources. Two that
  // hash to the same are only read once too often.
  std::vector<uint64_t> m_shared = {};
};

// Finds out what is the same for all cases, so that none of their processes, which are made of this
// one, has to.
void FindCommonFacts();

// Runs a case, in the process that is made for it: takes over its standard streams. Returns its
// record. Throws UsageError when there is not even a report.
Json RunOneCase(const SuitePlace& suite, size_t at);

}  // namespace host
