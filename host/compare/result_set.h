#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

// What a suite or a run has left, as far as it can be compared: figures, verdicts, guards and what
// the outputs hash to. Texts that come again and again stand in it once.

// Texts with a number each, counted from 0.
class TextTable {
 public:
  static constexpr int kNone = -1;

  int Number(std::string_view text);      // Adds what is new.
  int Find(std::string_view text) const;  // kNone when it is not there.
  const std::string& Text(int number) const { return m_texts[static_cast<size_t>(number)]; }
  size_t size() const { return m_texts.size(); }

 private:
  std::vector<std::string> m_texts;
  std::unordered_map<std::string, int> m_numbers;
};

// What a figure is: all that figures of one measure have in common.
struct MeasureKind {
  std::string name = {};
  std::string unit = {};
  std::string better = {};  // "higher", "lower", "none"
  int version = 0;          // 0 for results of routines, which have none.

  bool operator==(const MeasureKind&) const = default;
};

struct ComparedFigure {
  int kind = 0;                    // Index of its MeasureKind.
  int file = TextTable::kNone;     // Number of its name; none for a figure of the whole case.
  int channel = TextTable::kNone;  // From 0; none for all of them.
  double value = 0;                // Not a number where it has none.
  double truth = 0;                // The same where none is known.
};

struct ComparedGuard {
  int name = 0;
  int file = TextTable::kNone;
  bool operator==(const ComparedGuard&) const = default;
};

struct ComparedOutput {
  int name = 0;
  std::string sha256 = {};  // Empty where it is not known.
};

struct ComparedCase {
  std::string id = {};
  std::string routine = {};
  std::vector<std::string> arguments = {};
  std::string cluster = {};  // Empty for none.
  std::string verdict = {};
  double elapsed = 0;  // Seconds; not a number where it is not known.
  double cpu = 0;
  std::vector<ComparedFigure> figures = {};
  std::vector<ComparedGuard> guards = {};
  std::vector<ComparedOutput> outputs = {};
};

// Where results are from.
struct ResultOrigin {
  std::string path = {};     // As it was given.
  bool report = false;       // Of one run; else of a suite.
  std::string suite = {};    // Its file; empty for the routines of the catalogue.
  std::string engine = {};   // Name and version.
  std::string started = {};  // UTC.
};

struct ResultSet {
  ResultOrigin origin = {};
  std::vector<std::pair<std::string, double>> margins = {};  // That the suite declares.
  TextTable texts = {};
  std::vector<MeasureKind> kinds = {};
  std::vector<std::string> untrusted = {};  // Measures that have not passed their self-test.
  std::vector<ComparedCase> cases = {};
};

}  // namespace host
