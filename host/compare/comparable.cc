#include "compare/comparable.h"

#include <filesystem>
#include <map>

#include "base/usage_error.h"

namespace host {

namespace {

constexpr const char* kNotComparable = "not comparable: ";

// The name of a suite, wherever its file is.
std::string SuiteName(const ResultOrigin& origin) {
  if (origin.suite.empty()) return "the routines of the catalogue";
  return std::filesystem::path(origin.suite).filename();
}

[[noreturn]] void Refuse(const std::string& why) { throw UsageError{kNotComparable + why}; }

void CheckSuites(const ResultOrigin& a, const ResultOrigin& b) {
  if (a.report != b.report) {
    Refuse((a.report ? a.path : b.path) + " is the report of one run, " +
           (a.report ? b.path : a.path) + " holds the results of a suite");
  }
  if (!a.report && SuiteName(a) != SuiteName(b)) {
    Refuse("other suites: " + SuiteName(a) + " in " + a.path + ", " + SuiteName(b) + " in " +
           b.path);
  }
}

// Two that go by one name.
[[noreturn]] void RefuseKinds(const MeasureKind& a, const std::string& inA, const MeasureKind& b,
                              const std::string& inB) {
  if (a.version != b.version) {
    Refuse("the measure " + a.name + " is of version " + std::to_string(a.version) + " in " + inA +
           " and of version " + std::to_string(b.version) + " in " + inB);
  }
  Refuse("of " + a.name + ", better is \"" + a.better + "\" in " + inA + " and \"" + b.better +
         "\" in " + inB);
}

// All measures of one name and unit mean the same.
void CheckKinds(const ResultSet& a, const ResultSet& b) {
  struct Seen {
    const MeasureKind* kind;
    const ResultSet* in;
  };
  std::map<std::pair<std::string, std::string>, Seen> seen;
  for (const ResultSet* const set : {&a, &b}) {
    for (const MeasureKind& kind : set->kinds) {
      const auto [entry, isNew] = seen.try_emplace({kind.name, kind.unit}, Seen{&kind, set});
      const MeasureKind& there = *entry->second.kind;
      if (isNew || there == kind) continue;
      const std::string& inA = entry->second.in->origin.path;
      const std::string& inB = set->origin.path;
      RefuseKinds(there, inA, kind, inB);
    }
  }
}

std::string Words(const ComparedCase& one) {
  std::string words = one.routine;
  for (const std::string& word : one.arguments) words += " " + word;
  return words;
}

}  // namespace

void CheckComparable(const ResultSet& a, const ResultSet& b) {
  CheckSuites(a.origin, b.origin);
  CheckKinds(a, b);
  std::unordered_map<std::string_view, const ComparedCase*> cases;
  for (const ComparedCase& one : a.cases) cases.emplace(one.id, &one);
  bool common = a.cases.empty() && b.cases.empty();
  for (const ComparedCase& one : b.cases) {
    const auto there = cases.find(one.id);
    if (there == cases.end()) continue;
    common = true;
    const ComparedCase& other = *there->second;
    // The words of a single run may name other files.
    if (other.routine == one.routine && (a.origin.report || other.arguments == one.arguments)) {
      continue;
    }
    Refuse("the case " + one.id + " is " + Words(other) + " in " + a.origin.path + " and " +
           Words(one) + " in " + b.origin.path);
  }
  if (common) return;
  if (a.origin.report) {
    Refuse(a.cases.front().routine + " has run for " + a.origin.path + ", " +
           b.cases.front().routine + " for " + b.origin.path);
  }
  Refuse("no case is in both " + a.origin.path + " and " + b.origin.path);
}

}  // namespace host
