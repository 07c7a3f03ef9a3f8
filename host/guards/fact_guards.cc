#include "guards/fact_guards.h"

#include "base/units.h"

namespace host {

namespace {

// "text (and 2 more)"
std::string WithMore(std::string text, size_t more) {
  if (more > 0) text += " (and " + std::to_string(more) + " more)";
  return text;
}

// Of several arguments, inputs or lines that hit a guard, the first is named and the others are
// counted: Add() for each, then the text.
class Found {
 public:
  void Add(std::string text) {
    if (m_count++ == 0) m_first = std::move(text);
  }
  void Tell(Guard guard, GuardHits& hits) const {
    if (m_count > 0) hits.Add(guard, {}, WithMore(m_first, m_count - 1));
  }

 private:
  std::string m_first;
  size_t m_count = 0;
};

}  // namespace

void CheckFacts(const GuardInput& input, GuardHits& hits) {
  const RunFacts& facts = input.facts;
  if (facts.keptBefore > 0) {
    hits.Add(Guard::kAppended, {.at = 0},
             "appended to " + Seconds(facts.keptBefore) + " that the file held before");
  }

  Found unused;
  for (const IgnoredArgument& argument : facts.ignoredArguments) {
    if (argument.given == argument.used) continue;
    unused.Add(argument.name + " = " + argument.given + " was not used, but " + argument.used);
  }
  unused.Tell(Guard::kArgumentUnused, hits);

  Found unread;
  for (const InputRead& read : facts.inputs) {
    if (read.read >= read.seconds - input.rules.unreadTolerance) continue;
    unread.Add("of " + read.name + " only " + Seconds(read.read) + " of " + Seconds(read.seconds) +
               " were read");
  }
  unread.Tell(Guard::kInputUnread, hits);

  Found said;
  for (const std::string& line : facts.engineLines) said.Add(line);
  said.Tell(Guard::kEngineSaid, hits);
}

}  // namespace host
