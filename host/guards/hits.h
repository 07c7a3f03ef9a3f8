#pragma once

#include <string>
#include <vector>

#include "guards/guards.h"

namespace host {

// Where the guards put what they find, under the rules of the output.
class GuardHits {
 public:
  explicit GuardHits(const GuardInput& input) : m_rules(input.rules), m_facts(input.facts) {}

  bool IsOn(Guard guard) const { return m_rules[guard] != GuardAction::kOff; }

  // A place in the signal, in seconds from its start.
  struct Place {
    std::optional<double> at = {};
    std::optional<int> channel = {};
  };

  // Takes a hit of a guard that is on; others are ignored. `grave` is false for what only warns
  // even where the guard must hold.
  void Add(Guard guard, const Place& place, std::string text, bool grave = true);

  // In the order of the enumeration.
  std::vector<GuardHit> Take();

 private:
  const GuardRules& m_rules;
  const RunFacts& m_facts;
  std::vector<GuardHit> m_hits;
};

}  // namespace host
