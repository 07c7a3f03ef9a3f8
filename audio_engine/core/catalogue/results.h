#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

// What the routines find out: the figures in what they print, log and write as text.

namespace harness {

enum class Better { kNone, kHigher, kLower };

// Where the line of a figure stands.
enum class Stands {
  kPrinted,  // On standard output.
  kLogged,   // In the log.
  kWritten   // In a text that the routine writes.
};

// What becomes of a figure that stands in several lines.
enum class Takes {
  kLast,
  kSum,
  kMean,
  kMedian,
  kCount,  // How many lines there are.
  kShare   // 100 times the figure / the sum of all numbers of its line, the last such line.
};

// A figure that stands in lines of one form.
struct ResultLine {
  std::string_view name = {};
  std::string_view unit = {};
  Better better = Better::kNone;
  Stands stands = Stands::kPrinted;
  // The whole line: '#' is the figure, '*' any other number, "?" one word.
  std::string_view line = {};
  Takes takes = Takes::kLast;
  std::string_view file = {};  // Of kWritten: the output, as the routine opens it.
};

// What a column of a table holds.
struct ResultColumn {
  std::string name = {};  // Of its cells: "faulty_alarm.<row>".
  std::string unit = {};
  Better better = Better::kNone;
  std::string unknown = {};  // Why the routine gives no figure there; empty when it does.
};

// A text of a routine that holds numbers, a row in each line.
struct ResultTable {
  std::string file = {};               // As the routine opens it.
  std::vector<std::string> rows = {};  // In their order. Empty: a line begins with its name.
  // Of a row with several figures. Empty: a row is one cell, the mean of so many numbers, whose
  // name is "<name>.<row>".
  std::vector<ResultColumn> columns = {};
  std::string name = {};
  size_t numbers = 0;
  bool headed = false;  // The first line names the columns.
  // Tables of one cell a row have the mean of the cells of their group, "<group>.mean", and what
  // that is above the mean of another group, "<group>.over_<against>".
  std::string group = {};
  std::string against = {};
  std::string againstGroup = {};
  std::string unit = {};
  Better better = Better::kNone;
};

// The lines of a routine.
std::span<const ResultLine> ResultLines(std::string_view routine);

}  // namespace harness
