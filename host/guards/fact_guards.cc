#include "guards/fact_guards.h"

#include <optional>

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

// "1.20 s", or "1764 bytes"
std::string Amount(const InputRead& read, double amount) {
  return read.inBytes ? Bytes(static_cast<uint64_t>(amount)) : Seconds(amount);
}

}  // namespace

void CheckFacts(const GuardInput& input, GuardHits& hits) {
  const RunFacts& facts = input.facts;
  if (facts.keptBefore > 0 || facts.keptBytes > 0) {
    const std::string before =
        facts.keptBefore > 0 ? Seconds(facts.keptBefore) : Bytes(facts.keptBytes);
    const std::optional<double> at =
        facts.keptBefore > 0 ? std::optional(0.0) : std::optional<double>();
    hits.Add(Guard::kAppended, {.at = at}, "appended to " + before + " that the file held before");
  }

  Found unused;
  for (const IgnoredArgument& argument : facts.ignoredArguments) {
    if (argument.given == argument.used) continue;
    unused.Add(argument.name + " = " + argument.given + " was not used, but " + argument.used);
  }
  unused.Tell(Guard::kArgumentUnused, hits);

  Found unread;
  for (const InputRead& read : facts.inputs) {
    const double left = read.inBytes ? input.rules.unreadBytes : input.rules.unreadTolerance;
    if (read.read >= read.all - left) continue;
    unread.Add("of " + read.name + " only " + Amount(read, read.read) + " of " +
               Amount(read, read.all) + " were read");
  }
  unread.Tell(Guard::kInputUnread, hits);

  Found said;
  for (const std::string& line : facts.engineLines) said.Add(line);
  said.Tell(Guard::kEngineSaid, hits);
}

}  // namespace host
