#include "suite/suite_results.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/usage_error.h"
#include "files/new_file.h"
#include "suite/junit_results.h"
#include "suite/result_writer.h"

namespace host {

namespace {

// An open folder.
class Folder {
 public:
  explicit Folder(const std::string& path)
      : m_path(path), m_folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    if (m_folder < 0) throw UsageError{"cannot open " + path + ": " + strerror(errno)};
  }
  ~Folder() { close(m_folder); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const std::string& path() const { return m_path; }
  int descriptor() const { return m_folder; }

 private:
  std::string m_path;
  int m_folder;
};

// A file of results that takes the place of an earlier one at its end.
class Output {
 public:
  Output(const Folder& folder, const std::string& name)
      : m_path(folder.path() + "/" + name), m_new(folder.descriptor(), name, 0644) {
    const int descriptor = m_new.descriptor() < 0 ? -1 : dup(m_new.descriptor());
    m_file = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
    if (m_file == nullptr) Refuse();
  }
  ~Output() {
    if (m_file != nullptr) fclose(m_file);
  }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  FILE* file() const { return m_file; }

  void Publish() {
    const bool written = ferror(m_file) == 0;
    const bool closed = fclose(m_file) == 0;
    m_file = nullptr;
    if (!written || !closed || !m_new.Publish(true)) Refuse();
  }

 private:
  [[noreturn]] void Refuse() const {
    throw UsageError{"cannot write " + m_path + ": " + strerror(errno)};
  }

  std::string m_path;
  NewFile m_new;
  FILE* m_file = nullptr;
};

}  // namespace

void WriteResults(const SuiteJournal& journal, const std::string& path) {
  const Folder folder(path);
  Output jsonFile(folder, "results.json");
  Output csvFile(folder, "results.csv");
  Output junitFile(folder, "junit.xml");
  JsonResults json(jsonFile.file(), journal.header(), journal.counts());
  CsvResults csv(csvFile.file());
  JunitResults junit(junitFile.file(), journal.header().value("started", ""));
  for (size_t at = 0; at < journal.size(); ++at) {
    Json record = journal.Read(at);
    csv.Add(record);
    junit.Add(record);
    json.Add(std::move(record));
  }
  json.End();
  if (!junit.End())
    throw UsageError{"no room for a temporary file: " + std::string(strerror(errno))};
  jsonFile.Publish();
  csvFile.Publish();
  junitFile.Publish();
}

}  // namespace host
