#include "report_page/page_run.h"

#include <algorithm>
#include <filesystem>
#include <tuple>
#include <unordered_map>

#include "compare/baseline.h"
#include "compare/read_results.h"
#include "report_page/json_values.h"
#include "report_page/record_reader.h"
#include "suite/case_record.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// What is kept of every case.
struct CaseRow {
  size_t at = 0;
  PageRank rank = PageRank::kSame;
  PageRank change = PageRank::kSame;
};

PageRank RankOfChange(const std::string& word) {
  if (word == "worse" || word == "changed" || word == "gone") return PageRank::kWorse;
  if (word == "undecided" || word == "new") return PageRank::kUndecided;
  return word == "better" ? PageRank::kBetter : PageRank::kSame;
}

PageRank RankOfVerdict(const std::string& verdict) {
  if (verdict == "fail" || verdict == "error") return PageRank::kFailed;
  if (verdict == "warn" || verdict == "known") return PageRank::kWarned;
  return verdict == "pass" ? PageRank::kSame : PageRank::kNotRun;
}

// The verdict as it counts.
std::string CountedVerdict(const std::string& verdict, bool known) {
  return known && (verdict == "fail" || verdict == "error") ? "known" : verdict;
}

bool Before(const CaseRow& one, const CaseRow& other) {
  return std::tuple(one.rank, one.change, one.at) < std::tuple(other.rank, other.change, other.at);
}

std::string FolderOf(const std::string& place) {
  return fs::absolute(ResultsFile(place)).parent_path().string();
}

// The report of a run as the record of a case, paths whole.
Json RecordOfReport(Json report, const std::string& folder) {
  const fs::path directory = TextOf(report, "directory");
  Json outputs = Json::array();
  for (const Json& each : ListOf(report, "outputs")) {
    if (!each.is_object()) continue;
    Json& output = outputs.emplace_back(each);
    output["name"] = TextOf(each, "name");
    output["path"] = (directory / TextOf(each, "path")).string();
  }
  report["outputs"] = std::move(outputs);
  for (const char* const key : {"reason", "log"}) report[key] = TextOf(report, key);
  const SuiteCase one = {.id = TextOf(report, "routine"),
                         .routine = TextOf(report, "routine"),
                         .arguments = TextsOf(report, "arguments")};
  return EndedRecord(one, folder, "", report);
}

class RunReader {
 public:
  RunReader(const std::string& path, const std::string& against, size_t most) : m_most(most) {
    m_run.path = path;
    m_run.against = against;
  }

  PageRun Read() {
    ReadVerdicts();
    if (m_run.report) {
      m_rows = {{}};
      m_verdicts = {TextOf(m_run.header, "verdict")};
    }
    m_run.total = m_rows.size();
    if (!m_run.against.empty()) CompareAll();
    Count();
    Choose();
    if (!m_changes) m_now = {};
    TakeRecords();
    if (!m_run.against.empty()) TakeRecordsBefore();
    AddGone();
    return std::move(m_run);
  }

 private:
  // All cases once: verdicts, and what a comparison needs where there is one.
  void ReadVerdicts() {
    RecordReader reader([](size_t) { return true; },
                        [&](size_t at, const Json& record) {
                          const bool known = !ValueOf(record, "known").is_null();
                          m_rows.push_back({.at = at});
                          m_verdicts.push_back(CountedVerdict(TextOf(record, "verdict"), known));
                        });
    const bool compares = !m_run.against.empty();
    const std::string place = ExistingResults(m_run.path);
    m_now = ReadResultSet(place, reader, compares ? KeptResults::kAll : KeptResults::kVerdicts);
    m_now.origin.path = m_run.path;
    m_run.folder = FolderOf(place);
    m_run.header = reader.header();
    m_run.report = !reader.hasCases();
  }

  void CompareAll() {
    const std::string place = ExistingResults(m_run.against);
    RecordReader reader([](size_t) { return false; }, [](size_t, const Json&) {});
    m_before = ReadResultSet(place, reader, KeptResults::kAll);
    m_before.origin.path = m_run.against;
    m_run.againstHeader = reader.header();
    m_run.againstFolder = FolderOf(place);
    m_run.comparison = CompareResults(m_before, m_now, {});
    m_changes.emplace(m_before, m_now, *m_run.comparison);
  }

  void Count() {
    for (CaseRow& row : m_rows) {
      ++m_run.counts[m_verdicts[row.at]];
      row.rank = RankOfVerdict(m_verdicts[row.at]);
      if (!m_changes) continue;
      const std::string word = m_changes->Of(m_now.cases[row.at]).word;
      ++m_run.changes[word];
      row.change = RankOfChange(word);
      if (row.rank == PageRank::kSame) row.rank = row.change;
      if (row.change == PageRank::kWorse) row.rank = std::min(row.rank, row.change);
    }
    if (m_changes && !m_changes->Gone().empty()) m_run.changes["gone"] = m_changes->Gone().size();
  }

  void Choose() {
    const size_t most = std::min(m_most, m_rows.size());
    std::partial_sort(m_rows.begin(), m_rows.begin() + static_cast<std::ptrdiff_t>(most),
                      m_rows.end(), Before);
    m_rows.resize(most);
    for (const CaseRow& row : m_rows) m_places.emplace(row.at, m_places.size());
    m_run.cases.resize(most);
    for (size_t i = 0; i < most; ++i) {
      PageCase& one = m_run.cases[i];
      one.rank = m_rows[i].rank;
      if (!m_changes) continue;
      const ComparedCase& now = m_now.cases[m_rows[i].at];
      one.change = m_changes->Of(now);
      for (const ComparedGuard& guard : now.guards) {
        const bool ofFile = guard.file != TextTable::kNone;
        one.guards.emplace_back(m_now.texts.Text(guard.name),
                                ofFile ? m_now.texts.Text(guard.file) : "");
      }
    }
  }

  // The chosen cases once more, with all that is known of them.
  void TakeRecords() {
    if (m_run.report) {
      m_run.cases.front().record = RecordOfReport(m_run.header, m_run.folder);
      return;
    }
    RecordReader reader(
        [&](size_t at) { return m_places.contains(at); },
        [&](size_t at, Json record) { m_run.cases[m_places.at(at)].record = std::move(record); });
    ReadResultSet(ExistingResults(m_run.path), reader, KeptResults::kVerdicts);
  }

  void TakeRecordsBefore() {
    if (m_before.origin.report) {
      m_run.cases.front().before = RecordOfReport(m_run.againstHeader, m_run.againstFolder);
      return;
    }
    std::unordered_map<std::string, size_t> wanted;
    for (size_t i = 0; i < m_run.cases.size(); ++i) {
      wanted.emplace(TextOf(m_run.cases[i].record, "id"), i);
    }
    std::unordered_map<size_t, size_t> places;
    for (size_t at = 0; at < m_before.cases.size(); ++at) {
      const auto there = wanted.find(m_before.cases[at].id);
      if (there != wanted.end()) places.emplace(at, there->second);
    }
    RecordReader reader(
        [&](size_t at) { return places.contains(at); },
        [&](size_t at, Json record) { m_run.cases[places.at(at)].before = std::move(record); });
    ReadResultSet(ExistingResults(m_run.against), reader, KeptResults::kVerdicts);
  }

  // Cases that only the other run has come first among those that are worse.
  void AddGone() {
    if (!m_changes) return;
    std::vector<PageCase>& cases = m_run.cases;
    const auto first = std::ranges::find_if(
        cases, [](const PageCase& each) { return each.rank >= PageRank::kWorse; });
    auto at = first - cases.begin();
    for (const ComparedCase* const one : m_changes->Gone()) {
      if (static_cast<size_t>(at) >= m_most) break;
      PageCase gone = {.rank = PageRank::kWorse};
      gone.change = {.word = "gone", .verdict = one->verdict};
      gone.record =
          NotRunRecord({.id = one->id, .routine = one->routine, .arguments = one->arguments});
      gone.record["reason"] = "only " + m_run.against + " has this case";
      cases.insert(cases.begin() + at++, std::move(gone));
    }
    // They take the place of what is less bad.
    if (cases.size() > m_most) cases.resize(m_most);
  }

  size_t m_most;
  PageRun m_run;
  std::vector<CaseRow> m_rows;
  std::vector<std::string> m_verdicts;          // All short enough to need no memory of their own.
  std::unordered_map<size_t, size_t> m_places;  // Of the chosen cases, by where they stand.
  ResultSet m_now;
  ResultSet m_before;
  std::optional<CaseChanges> m_changes;
};

}  // namespace

PageRun ReadPageRun(const std::string& path, const std::string& against, size_t most) {
  return RunReader(path, against, most).Read();
}

}  // namespace host
