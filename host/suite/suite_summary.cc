#include "suite/suite_summary.h"

#include <algorithm>
#include <vector>

#include "base/printable.h"
#include "report/result_lines.h"
#include "suite/case_record.h"

namespace host {

namespace {

constexpr size_t kMaxRows = 200;
constexpr size_t kWidestId = 40;  // A longer one moves its own reason, not those of all others.

struct Row {
  std::string verdict;
  std::string id;
  std::string reason;
};

Row RowOf(const Json& record) {
  const std::string known = record["known"].is_null() ? "" : record.value("known", "");
  const std::string reason = record.value("reason", "");
  const std::string id = record.value("id", "");
  if (IsKnownFailure(record)) return {"known", id, known + " (" + reason + ")"};
  if (record["verdict"] == "pass") return {"PASSES", id, "though it is known to fail: " + known};
  return {record.value("verdict", ""), id, reason};
}

std::string Padded(const std::string& text, size_t width) {
  return text + std::string(width - std::min(width, text.size()), ' ');
}

std::string Table(const std::vector<Row>& rows, size_t more, const Paint& paint) {
  size_t verdicts = 0;
  size_t ids = 0;
  for (const Row& row : rows) {
    verdicts = std::max(verdicts, row.verdict.size());
    ids = std::max(ids, std::min(row.id.size(), kWidestId));
  }
  std::string text;
  for (const Row& row : rows) {
    text += paint.Word(Padded(row.verdict, verdicts)) + "  " + Padded(Printable(row.id), ids) +
            "  " + Printable(row.reason) + "\n";
  }
  if (more > 0) text += "and " + std::to_string(more) + " more that did not pass\n";
  return text.empty() ? text : "\n" + text + "\n";
}

std::string TextOf(const Json& object, const char* key) {
  const Json value = object.value(key, Json());
  return value.is_string() ? value.get<std::string>() : "";
}

// What the record of a case says that its routine has found.
std::vector<Result> ResultsOf(const Json& record) {
  std::vector<Result> results;
  for (const Json& each : record["results"]) {
    Result result = {.name = TextOf(each, "name"), .unit = TextOf(each, "unit")};
    const Json value = each.value("value", Json());
    if (value.is_number()) result.value = value.get<double>();
    result.reason = TextOf(each, "reason");
    results.push_back(result);
  }
  return results;
}

}  // namespace

std::string SuiteSummary(const SuiteJournal& journal, const std::string& folder,
                         const Paint& paint) {
  std::vector<Row> rows;
  size_t more = 0;
  for (size_t at = 0; at < journal.size(); ++at) {
    if (!journal.IsTold(at)) continue;
    if (rows.size() < kMaxRows) {
      rows.push_back(RowOf(journal.Read(at)));
    } else {
      ++more;
    }
  }
  // Who asks for one routine wants its figures, as a run prints them.
  std::string found;
  if (journal.size() == 1) found = ResultLines(ResultsOf(journal.Read(0)), "in results.csv");
  return Table(rows, more, paint) + found + journal.counts().Text() + "\n" + "results  " + folder +
         "/results.json, results.csv, junit.xml\n";
}

}  // namespace host
