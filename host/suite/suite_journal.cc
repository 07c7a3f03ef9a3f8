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

namespace host {

namespace {

constexpr const char* kPlan = "/plan.jsonl";
constexpr const char* kCases = "/cases.jsonl";

void Replace(const std::string& path, const std::string& text) {
  if (ReplaceFile(path, 0644, text)) return;
  throw UsageError{"cannot write " + path + ": " + strerror(errno)};
}

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

// Calls `take` with each whole line of a file, and where it starts.
void ForEachLine(FILE* file, const std::string& path,
                 const std::function<void(const Json&, uint64_t)>& take) {
  Buffer buffer;
  size_t number = 0;
  for (;;) {
    const auto start = static_cast<uint64_t>(ftello(file));
    const auto line = buffer.Next(file);
    if (!line) return;
    ++number;
    const Json json = Json::parse(*line, nullptr, false);
    if (!json.is_object()) {
      throw UsageError{path + ":" + std::to_string(number) + ": not a line of a suite's results"};
    }
    take(json, start);
  }
}

}  // namespace

std::string JournalLine(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

void WritePlan(const std::string& folder, const std::string& lines) {
  Replace(folder + kPlan, lines);
}

CaseLog::CaseLog(const std::string& folder, const std::string& kept) : m_path(folder + kCases) {
  Replace(m_path, kept);
  m_file = open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  if (m_file < 0) throw UsageError{"cannot write " + m_path + ": " + strerror(errno)};
}

CaseLog::~CaseLog() { close(m_file); }

void CaseLog::Append(const Json& record) {
  const std::string line = JournalLine(record);
  if (WriteAll(m_file, line.data(), line.size())) return;
  throw UsageError{"cannot write " + m_path + ": " + strerror(errno)};
}

SuiteJournal::SuiteJournal(const std::string& folder) {
  const std::string plan = folder + kPlan;
  m_plan = fopen(plan.c_str(), "re");
  if (m_plan == nullptr) {
    throw UsageError{folder + " holds no results of a suite: " + plan + ": " + strerror(errno)};
  }
  ReadPlan(plan);
  m_ended = fopen((folder + kCases).c_str(), "re");
  if (m_ended != nullptr) ReadEnded(folder + kCases);
  for (const Line& line : m_lines) {
    if (!line.ended) ++m_counts.notRun;
  }
}

SuiteJournal::~SuiteJournal() {
  if (m_plan != nullptr) fclose(m_plan);
  if (m_ended != nullptr) fclose(m_ended);
}

void SuiteJournal::ReadPlan(const std::string& path) {
  ForEachLine(m_plan, path, [this](const Json& line, uint64_t start) {
    if (m_header.is_null()) {
      m_header = line;
    } else {
      m_lines.push_back(
          {.index = line.value("index", uint64_t{0}), .start = start, .ended = false});
    }
  });
  if (m_header.is_null()) throw UsageError{path + " is empty"};
  std::sort(m_lines.begin(), m_lines.end(),
            [](const Line& a, const Line& b) { return a.index < b.index; });
}

void SuiteJournal::ReadEnded(const std::string& path) {
  ForEachLine(m_ended, path, [this](const Json& line, uint64_t start) {
    const uint64_t index = line.value("index", UINT64_MAX);
    const auto at = std::lower_bound(m_lines.begin(), m_lines.end(), index,
                                     [](const Line& a, uint64_t b) { return a.index < b; });
    if (at == m_lines.end() || at->index != index || at->ended) return;
    *at = {.index = index, .start = start, .ended = true};
    m_counts.Add(line);
  });
}

Json SuiteJournal::Read(size_t at) const {
  const Line& line = m_lines[at];
  FILE* const file = line.ended ? m_ended : m_plan;
  Buffer buffer;
  if (fseeko(file, static_cast<off_t>(line.start), SEEK_SET) == 0) {
    if (const auto text = buffer.Next(file)) return Json::parse(*text, nullptr, false);
  }
  throw UsageError{"the results of a suite changed while they were read"};
}

}  // namespace host
