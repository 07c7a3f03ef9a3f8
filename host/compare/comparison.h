#pragma once

#include <optional>
#include <string>
#include <vector>

#include "compare/result_set.h"

namespace host {

// What a comparison of two sets of results, A and B, has found.

enum class Change { kWorse, kChanged, kUndecided, kBetter, kSame };

// "worse", "changed", "undecided", "better", "same"
const char* ChangeName(Change change);

// Whether it counts as worse: a figure of which neither more nor less is better has changed.
bool IsWorse(Change change);

// A case, file or figure that only one of the two has; of a whole case or file the rest is empty.
struct OnlyThere {
  std::string caseId;
  std::string file = {};
  std::string name = {};
};

struct FallenVerdict {
  std::string caseId;
  std::string a;
  std::string b;
};

struct NewGuard {
  std::string caseId;
  std::string file;  // Empty for none.
  std::string name;
};

struct MeasureComparison {
  MeasureKind kind = {};
  bool toTruth = false;  // The figures are distances from what is known to be true.
  bool untrusted = false;
  size_t count = 0;                     // Cases.
  std::optional<size_t> clusters = {};  // Where cases share one.
  double a = 0;                         // Means over the cases.
  double b = 0;
  double difference = 0;  // b - a
  bool interval = false;  // Whether low and high are known.
  double low = 0;         // Of the difference, 95 %.
  double high = 0;
  double p = 1;  // Wilcoxon's.
  size_t wins = 0;
  size_t losses = 0;
  std::string worstCase = {};  // Empty where no case lost anything.
  double worst = 0;            // Its difference.
  double margin = 0;
  Change verdict = Change::kUndecided;
  // Whether the verdict still holds when it is corrected for there being several measures.
  bool holds = false;
  // How many more independent things a decision would take, about; nothing for a verdict that is
  // no kUndecided, or where no number would do.
  std::optional<size_t> more = {};
};

struct TimeComparison {
  std::string name = {};
  std::string unit = {};
  size_t count = 0;  // Cases.
  double a = 0;      // Medians over the cases.
  double b = 0;
  double ratio = 0;                    // b / a
  double quartiles[2] = {};            // Of the ratios of single cases.
  double margin = 0;                   // A share: 0.1 is 10 %.
  std::optional<Change> verdict = {};  // Only where it is asked for.
};

struct Comparison {
  ResultOrigin a = {};
  ResultOrigin b = {};
  Change verdict = Change::kUndecided;
  std::vector<MeasureComparison> measures = {};  // The worst first.
  std::vector<TimeComparison> times = {};
  std::vector<OnlyThere> gone = {};
  std::vector<OnlyThere> added = {};
  std::vector<FallenVerdict> fallen = {};
  std::vector<NewGuard> guards = {};
  size_t cases = 0;      // That both have.
  size_t files = 0;      // The same of outputs.
  size_t sameBytes = 0;  // Of those files.
  size_t otherBytes = 0;
};

}  // namespace host
