#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "base/json_parts.h"
#include "suite/suite_counts.h"

namespace host {

// What a suite leaves in its folder while it runs: plan.jsonl, whose first line says what the suite
// is and each other line which case it has, and cases.jsonl, a line for each case that has ended.

// A line of these files.
std::string JournalLine(const Json& json);

// Lines that take the place of one of these files, as many as there may be. What has not been
// published leaves nothing. All throw UsageError when the file cannot be written.
class NewLines {
 public:
  static NewLines ForPlan(const std::string& folder);
  static NewLines ForCases(const std::string& folder);
  ~NewLines();
  NewLines(const NewLines&) = delete;
  NewLines& operator=(const NewLines&) = delete;

  void Add(const Json& line);
  void Publish();

 private:
  explicit NewLines(const std::string& path);
  [[noreturn]] void Refuse() const;

  std::string m_path;
  FILE* m_file;
};

// The lines of cases.jsonl that are being added.
class CaseLog {
 public:
  // Continues after the lines that are there. Throws UsageError when the file cannot be written.
  explicit CaseLog(const std::string& folder);
  ~CaseLog();
  CaseLog(const CaseLog&) = delete;
  CaseLog& operator=(const CaseLog&) = delete;

  // One line, in one write. Throws UsageError when it cannot be written.
  void Append(const Json& record);

 private:
  std::string m_path;
  int m_file;
};

// The cases of a suite in declared order, whatever the order was in which they ended. Of each no
// more is kept than where its line stands.
class SuiteJournal {
 public:
  // Throws UsageError, as reading does, when the folder holds no plan, or a line that is none
  // (journal_form.h); a last line that is not whole is as if it were not there.
  explicit SuiteJournal(const std::string& folder);

  // The first line of the plan.
  const Json& header() const { return m_header; }

  const SuiteCounts& counts() const { return m_counts; }
  size_t size() const { return m_lines.size(); }

  // What cases.jsonl says of a case, or, when it has not ended, the plan.
  Json Read(size_t at) const;
  bool Ended(size_t at) const { return m_lines[at].ended; }
  uint64_t Index(size_t at) const { return m_lines[at].index; }

  // Whether a case has ended and did not pass, or did and should not have.
  bool IsTold(size_t at) const { return m_lines[at].told; }

 private:
  struct Line {
    uint64_t index;
    uint64_t start;
    bool ended;
    bool told;
  };
  using File = std::unique_ptr<FILE, int (*)(FILE*)>;

  static File Open(const std::string& path);
  void ReadPlan(const std::string& path);
  void ReadEnded(const std::string& path);

  Json m_header;
  std::vector<Line> m_lines;
  SuiteCounts m_counts;
  File m_plan;
  File m_ended;  // Null when no case has ended.
};

}  // namespace host
