#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/json_parts.h"

namespace host {

// A run as its report recorded it.

// Why a run cannot be done again, as a whole sentence.
struct ReplayFault {
  std::string text = {};
};

struct RecordedFile {
  std::string name = {};    // As the routine opens it.
  std::string place = {};   // Relative to the workspace.
  std::string path = {};    // Where it was.
  std::string digest = {};  // SHA-256; empty where there is none.
  std::string reason = {};  // Why there is none.

  // Of a staged input: the recording that it was made from, and its SHA-256.
  std::string source = {};
  std::string sourceDigest = {};
};

struct RecordedRun {
  std::string started = {};
  std::string routine = {};
  std::vector<std::string> command = {};
  std::string end = {};   // "crash", "timeout" or, where it came to its end, empty.
  bool appended = false;  // An output that held something before was added to.
  std::vector<RecordedFile> inputs = {};
  std::vector<RecordedFile> outputs = {};
  Json report = {};  // All of it.
};

// The file of a report: the path itself, or for the workspace of a case of a suite, DIR/cases/ID,
// the report DIR/reports/ID.json.
std::string ReportFile(const std::string& path);

// Throws ReplayFault for what is no report of a run that took place.
RecordedRun ReadRecordedRun(const std::string& path);

}  // namespace host
