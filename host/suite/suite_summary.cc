#include "suite/suite_summary.h"

#include <algorithm>
#include <vector>

#include "base/printable.h"
#include "suite/case_record.h"
#include "suite/suite_journal.h"

namespace host {

namespace {

constexpr size_t kMaxRows = 200;

struct Row {
  std::string verdict;
  std::string id;
  std::string reason;
};

// Whether a case is in the table: it did not pass, or it did and should not have.
bool IsTold(const Json& record) {
  const std::string verdict = record.value("verdict", "");
  return verdict != "not_run" && (verdict != "pass" || !record["known"].is_null());
}

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
    ids = std::max(ids, row.id.size());
  }
  std::string text;
  for (const Row& row : rows) {
    text += paint.Word(Padded(row.verdict, verdicts)) + "  " + Padded(Printable(row.id), ids) +
            "  " + Printable(row.reason) + "\n";
  }
  if (more > 0) text += "and " + std::to_string(more) + " more that did not pass\n";
  return text.empty() ? text : "\n" + text + "\n";
}

}  // namespace

std::string SuiteSummary(const std::string& folder, const Paint& paint) {
  const SuiteJournal journal(folder);
  std::vector<Row> rows;
  size_t more = 0;
  for (size_t at = 0; at < journal.size(); ++at) {
    if (!journal.Ended(at)) continue;
    const Json record = journal.Read(at);
    if (!IsTold(record)) continue;
    if (rows.size() < kMaxRows) {
      rows.push_back(RowOf(record));
    } else {
      ++more;
    }
  }
  return Table(rows, more, paint) + journal.counts().Text() + "\n" + "results  " + folder +
         "/results.json, results.csv, junit.xml\n";
}

}  // namespace host
