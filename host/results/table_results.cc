#include "results/table_results.h"

#include <cmath>
#include <map>
#include <string_view>
#include <utility>

#include "results/line_cutter.h"
#include "results/numbers.h"

namespace host {

namespace {

constexpr const char* kTorn = "the line is missing or torn";

std::vector<std::string> WholeLines(const TableText& source) {
  std::vector<std::string> lines;
  LineCutter cutter;
  cutter.Add(*source.text, [&](std::string_view line) { lines.emplace_back(line); });
  if (source.table.headed && !lines.empty()) lines.erase(lines.begin());
  return lines;
}

void SkipBlanks(std::string_view& text) {
  while (text.starts_with(' ') || text.starts_with('\t')) text.remove_prefix(1);
}

// Numbers with blanks between them, and nothing else; none at all where there is something else.
std::vector<double> Numbers(std::string_view line) {
  std::vector<double> numbers;
  for (SkipBlanks(line); !line.empty(); SkipBlanks(line)) {
    const std::optional<double> number = TakeNumber(line);
    if (!number || (!line.empty() && line.front() != ' ' && line.front() != '\t')) return {};
    numbers.push_back(*number);
  }
  return numbers;
}

// The mean of those that are numbers.
void SetMean(const std::vector<double>& numbers, const std::string& what, Result& cell) {
  double sum = 0;
  size_t count = 0;
  for (const double number : numbers) {
    if (!std::isfinite(number)) continue;
    sum += number;
    ++count;
  }
  if (count > 0) cell.value = sum / static_cast<double>(count);
  if (count == numbers.size()) return;
  cell.reason = count == 0 ? "there is no number for any of them"
                           : "only " + std::to_string(count) + " of " +
                                 std::to_string(numbers.size()) + " " + what + " have a number";
}

std::vector<Result> RowsOfOneCell(const TableText& source) {
  const ResultTable& table = source.table;
  const std::vector<std::string> lines =
      source.text ? WholeLines(source) : std::vector<std::string>();
  std::vector<Result> cells;
  for (size_t i = 0; i < table.rows.size(); ++i) {
    Result cell = {.name = table.name + "." + table.rows[i],
                   .unit = table.unit,
                   .better = table.better,
                   .file = table.file};
    const std::vector<double> numbers =
        i < lines.size() ? Numbers(lines[i]) : std::vector<double>();
    if (!source.text) {
      cell.reason = source.reason;
    } else if (numbers.size() != table.numbers) {
      cell.reason = kTorn;
    } else {
      SetMean(numbers, "figures", cell);
    }
    cells.push_back(std::move(cell));
  }
  return cells;
}

std::vector<Result> RowsOfColumns(const TableText& source) {
  std::vector<Result> cells;
  if (!source.text) return cells;
  for (const std::string& line : WholeLines(source)) {
    const size_t end = line.find_first_of(" \t");
    const std::string name = line.substr(0, end);
    const std::vector<double> numbers =
        end == std::string::npos ? std::vector<double>() : Numbers(line.substr(end));
    for (size_t i = 0; i < source.table.columns.size(); ++i) {
      const harness::ResultColumn& column = source.table.columns[i];
      Result cell = {.name = column.name + "." + name,
                     .unit = column.unit,
                     .better = column.better,
                     .file = source.table.file,
                     .reason = column.unknown};
      if (numbers.size() != source.table.columns.size()) {
        cell.reason = kTorn;
      } else if (!std::isfinite(numbers[i])) {
        cell.reason = "there is no number";
      } else if (cell.reason.empty()) {
        cell.value = numbers[i];
      }
      cells.push_back(std::move(cell));
    }
  }
  return cells;
}

// The cells of a group of tables.
struct CellsOfGroup {
  const ResultTable* first;
  std::vector<double> values = {};  // Not a number where there is none.
};

Result MeanOf(const std::string& name, const CellsOfGroup& group) {
  Result mean = {.name = name + ".mean", .unit = group.first->unit, .better = group.first->better};
  SetMean(group.values, "cells", mean);
  return mean;
}

Result LeadOf(const std::string& name, const CellsOfGroup& group, const Result& mean,
              const std::map<std::string, CellsOfGroup>& groups) {
  Result lead = {
      .name = name + ".over_" + group.first->against, .unit = mean.unit, .better = mean.better};
  const auto other = groups.find(group.first->againstGroup);
  if (other == groups.end()) {
    lead.reason = "this run has no tables of \"" + group.first->against + "\"";
    return lead;
  }
  const Result otherMean = MeanOf(other->first, other->second);
  for (const Result* each : {&mean, &otherMean}) {
    if (lead.reason.empty() && !each->reason.empty())
      lead.reason = each->name + ": " + each->reason;
  }
  if (mean.value && otherMean.value) lead.value = *mean.value - *otherMean.value;
  return lead;
}

}  // namespace

std::vector<Result> TableResults(std::span<const TableText> tables) {
  std::vector<Result> results;
  std::vector<std::string> order;
  std::map<std::string, CellsOfGroup> groups;
  for (const TableText& source : tables) {
    const bool columns = !source.table.columns.empty();
    const std::vector<Result> cells = columns ? RowsOfColumns(source) : RowsOfOneCell(source);
    results.insert(results.end(), cells.begin(), cells.end());
    const std::string& name = source.table.group;
    if (name.empty()) continue;
    if (!groups.contains(name)) order.push_back(name);
    CellsOfGroup& group = groups.try_emplace(name, CellsOfGroup{&source.table}).first->second;
    for (const Result& cell : cells) group.values.push_back(cell.value.value_or(NAN));
  }
  for (const std::string& name : order) {
    const CellsOfGroup& group = groups.at(name);
    const Result mean = MeanOf(name, group);
    results.push_back(mean);
    if (!group.first->against.empty()) results.push_back(LeadOf(name, group, mean, groups));
  }
  return results;
}

}  // namespace host
