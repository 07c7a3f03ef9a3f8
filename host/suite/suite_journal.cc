#include "suite/suite_journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>

#include "base/usage_error.h"
#include "files/new_file.h"
#include "files/whole_file.h"
#include "suite/journal_form.h"

namespace host {

namespace {

constexpr const char* kPlan = "/plan.jsonl";
constexpr const char* kCases = "/cases.jsonl";
constexpr const char* kNew = ".new";  // What follows the name of a file that is not yet whole.

// A line, which getline makes room for.
class Buffer {
 public:
  Buffer() = default;
  ~Buffer() { free(m_text); }  // NOLINT(*-no-malloc): as getline wants it.
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  // The next line, without its end; nothing at the end of the file, or when it has no end.
  std::optional<std::string_view> Next(FILE* file) {
    const ssize_t length = getline(&m_text, &m_size, file);
    if (length <= 0 || m_text[length - 1] != '\n') return std::nullopt;
    return std::string_view(m_text, static_cast<size_t>(length) - 1);
  }

 private:
  char* m_text = nullptr;
  size_t m_size = 0;
};

// The end of a text that starts with a quote.
size_t EndOfText(std::string_view line, size_t at) {
  for (++at; at < line.size() && line[at] != '"'; ++at) {
    if (line[at] == '\\') ++at;
  }
  return at;
}

// The object in a line without its lists and objects, which nobody asks for who only looks through
// the lines, and which are nearly all of it: they are not parsed.
Json Skimmed(std::string_view line) {
  std::string members = "{";
  int depth = 0;
  bool nested = false;
  size_t start = 1;
  for (size_t at = 0; at < line.size(); ++at) {
    const char letter = line[at];
    const bool closes = letter == '}' || letter == ']';
    if (letter == '"') {
      at = EndOfText(line, at);
    } else if (depth == 1 && (letter == ',' || closes)) {
      if (!nested)
        members += (members.size() > 1 ? "," : "") + std::string(line, start, at - start);
      start = at + 1;
      nested = false;
    } else if (letter == '{' || letter == '[') {
      nested = depth > 0;
      ++depth;
    }
    if (closes && (--depth < 0 || (depth == 0 && at + 1 < line.size()))) return {};
  }
  return depth == 0 ? Json::parse(members + "}", nullptr, false) : Json();
}

bool IsWorthTelling(const Json& record) {
  const std::string verdict = record.value("verdict", "");
  return verdict != "not_run" && (verdict != "pass" || !record.value("known", Json()).is_null());
}

// Calls `take` with each whole line of a file, and where it starts; it returns whether that is one
// that may stand there.
void ForEachLine(FILE* file, const std::string& path,
                 const std::function<bool(Json&, uint64_t)>& take) {
  Buffer buffer;
  size_t number = 0;
  for (;;) {
    const auto start = static_cast<uint64_t>(ftello(file));
    const auto line = buffer.Next(file);
    if (!line) return;
    ++number;
    Json json = number == 1 ? Json::parse(*line, nullptr, false) : Skimmed(*line);
    if (json.is_object() && take(json, start)) continue;
    throw UsageError{path + ":" + std::to_string(number) + ": not a line of a suite's results"};
  }
}

}  // namespace

std::string JournalLine(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

NewLines NewLines::ForPlan(const std::string& folder) { return NewLines(folder + kPlan); }
NewLines NewLines::ForCases(const std::string& folder) { return NewLines(folder + kCases); }

NewLines::NewLines(const std::string& path)
    : m_path(path), m_file(fopen((path + kNew).c_str(), "we")) {
  if (m_file == nullptr) Refuse();
}

NewLines::~NewLines() {
  if (m_file == nullptr) return;
  fclose(m_file);
  unlink((m_path + kNew).c_str());
}

void NewLines::Refuse() const {
  throw UsageError{"cannot write " + m_path + ": " + strerror(errno)};
}

void NewLines::Add(const Json& line) {
  const std::string text = JournalLine(line);
  if (fwrite(text.data(), 1, text.size(), m_file) != text.size()) Refuse();
}

void NewLines::Publish() {
  if (fflush(m_file) != 0 || rename((m_path + kNew).c_str(), m_path.c_str()) != 0) Refuse();
  const bool closed = fclose(m_file) == 0;
  m_file = nullptr;
  if (!closed) Refuse();
}

CaseLog::CaseLog(const std::string& folder) : m_path(folder + kCases) {
  m_file = open(m_path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (m_file < 0) throw UsageError{"cannot write " + m_path + ": " + strerror(errno)};
}

CaseLog::~CaseLog() { close(m_file); }

void CaseLog::Append(const Json& record) {
  const std::string line = JournalLine(record);
  if (WriteAll(m_file, line.data(), line.size())) return;
  throw UsageError{"cannot write " + m_path + ": " + strerror(errno)};
}

SuiteJournal::File SuiteJournal::Open(const std::string& path) {
  return {fopen(path.c_str(), "re"), fclose};
}

SuiteJournal::SuiteJournal(const std::string& folder)
    : m_plan(Open(folder + kPlan)), m_ended(nullptr, fclose) {
  const std::string plan = folder + kPlan;
  if (m_plan == nullptr) {
    throw UsageError{folder + " holds no results of a suite: " + plan + ": " + strerror(errno)};
  }
  ReadPlan(plan);
  m_ended = Open(folder + kCases);
  if (m_ended != nullptr) ReadEnded(folder + kCases);
  for (const Line& line : m_lines) {
    if (!line.ended) ++m_counts.notRun;
  }
}

void SuiteJournal::ReadPlan(const std::string& path) {
  ForEachLine(m_plan.get(), path, [this](Json& line, uint64_t start) {
    if (m_header.is_null()) {
      m_header = line;
      return IsPlanHeader(line);
    }
    if (!HasPlace(line)) return false;
    m_lines.push_back(
        {.index = line["index"].get<uint64_t>(), .start = start, .ended = false, .told = false});
    return true;
  });
  if (m_header.is_null()) throw UsageError{path + " is empty"};
  std::sort(m_lines.begin(), m_lines.end(),
            [](const Line& a, const Line& b) { return a.index < b.index; });
}

void SuiteJournal::ReadEnded(const std::string& path) {
  ForEachLine(m_ended.get(), path, [this](Json& line, uint64_t start) {
    if (!TakeRecord(line)) return false;
    const auto index = line["index"].get<uint64_t>();
    const auto at = std::lower_bound(m_lines.begin(), m_lines.end(), index,
                                     [](const Line& a, uint64_t b) { return a.index < b; });
    if (at == m_lines.end() || at->index != index || at->ended) return true;
    *at = {.index = index, .start = start, .ended = true, .told = IsWorthTelling(line)};
    m_counts.Add(line);
    return true;
  });
}

Json SuiteJournal::Read(size_t at) const {
  const Line& line = m_lines[at];
  FILE* const file = (line.ended ? m_ended : m_plan).get();
  Buffer buffer;
  if (fseeko(file, static_cast<off_t>(line.start), SEEK_SET) == 0) {
    const auto text = buffer.Next(file);
    Json record = text ? Json::parse(*text, nullptr, false) : Json();
    if (TakeWholeRecord(record)) return record;
  }
  throw UsageError{"a line of the results of a suite is damaged, or changed while they were read"};
}

}  // namespace host
