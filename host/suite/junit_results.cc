#include "suite/junit_results.h"

#include <pugixml.hpp>

#include "report/xml_text.h"
#include "suite/case_record.h"

namespace host {

namespace {

std::string Seconds(double seconds) {
  char text[64];
  snprintf(text, sizeof text, "%.6f", seconds);
  return text;
}

double Elapsed(const Json& record) {
  return record["elapsed"].is_number() ? record["elapsed"].get<double>() : 0;
}

// What JUnit calls a case that did not plainly pass: "failure", "error" or "skipped"; empty for one
// that passed.
std::string Outcome(const Json& record) {
  const std::string verdict = record.value("verdict", "");
  if (verdict == "pass" || verdict == "warn") return "";
  if (IsKnownFailure(record) || verdict == "skip" || verdict == "not_run") return "skipped";
  return verdict == "fail" ? "failure" : "error";
}

std::string Message(const Json& record) {
  const std::string reason = record.value("reason", "");
  if (IsKnownFailure(record)) return "known: " + record.value("known", "") + " (" + reason + ")";
  return record["verdict"] == "not_run" ? "not run: " + reason : reason;
}

// What the case has said: a warning with its reason, and the last lines of the log.
std::string SystemOut(const Json& record) {
  std::string text;
  if (record["verdict"] == "warn") text = "warn: " + record.value("reason", "") + "\n";
  return text + record.value(kLogTailKey, "");
}

void Save(const pugi::xml_document& document, FILE* file) {
  pugi::xml_writer_file writer(file);
  document.save(writer, "  ", pugi::format_default | pugi::format_no_declaration,
                pugi::encoding_utf8);
}

}  // namespace

JunitResults::JunitResults(FILE* file, const std::string& started)
    : m_file(file), m_started(started) {
  if (m_started.ends_with('Z')) m_started.pop_back();  // A date without a zone is what is read.
}

JunitResults::~JunitResults() {
  for (const auto& [name, group] : m_groups) {
    if (group.cases != nullptr) fclose(group.cases);
  }
}

void JunitResults::Add(const Json& record) {
  const std::string name = record.value("group", "");
  Group& group = m_groups[name];
  if (group.cases == nullptr) group.cases = tmpfile();
  if (group.cases == nullptr) {
    m_good = false;
    return;
  }
  pugi::xml_document document;
  pugi::xml_node test = document.append_child("testcase");
  SetAttribute(test, "classname", name + "." + record.value("routine", ""));
  SetAttribute(test, "name", record.value("id", ""));
  SetAttribute(test, "time", Seconds(Elapsed(record)));
  const std::string outcome = Outcome(record);
  if (!outcome.empty()) {
    pugi::xml_node node = test.append_child(outcome.c_str());
    SetAttribute(node, "message", Message(record));
    if (outcome != "skipped") SetAttribute(node, "type", record.value("cause", ""));
  }
  if (const std::string out = SystemOut(record); !out.empty()) AddText(test, "system-out", out);
  Save(document, group.cases);
  ++group.tests;
  group.failures += outcome == "failure" ? 1 : 0;
  group.errors += outcome == "error" ? 1 : 0;
  group.skipped += outcome == "skipped" ? 1 : 0;
  group.seconds += Elapsed(record);
}

bool JunitResults::End() {
  Group all;
  for (const auto& [name, group] : m_groups) {
    all.tests += group.tests;
    all.failures += group.failures;
    all.errors += group.errors;
    all.skipped += group.skipped;
    all.seconds += group.seconds;
  }
  fprintf(m_file,
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"audio_bench\" "
          "tests=\"%zu\" failures=\"%zu\" errors=\"%zu\" skipped=\"%zu\" time=\"%.6f\">\n",
          all.tests, all.failures, all.errors, all.skipped, all.seconds);
  for (const auto& [name, group] : m_groups) m_good = Write(name, group) && m_good;
  fputs("</testsuites>\n", m_file);
  return m_good;
}

bool JunitResults::Write(const std::string& name, const Group& group) {
  if (group.cases == nullptr) return false;
  // Group names are plain words of the catalogue.
  fprintf(m_file,
          "<testsuite name=\"%s\" tests=\"%zu\" failures=\"%zu\" errors=\"%zu\" skipped=\"%zu\" "
          "time=\"%.6f\" timestamp=\"%s\">\n",
          name.c_str(), group.tests, group.failures, group.errors, group.skipped, group.seconds,
          m_started.c_str());
  bool good = fflush(group.cases) == 0 && ferror(group.cases) == 0;
  rewind(group.cases);
  char bytes[65536];
  for (size_t count = 0; (count = fread(bytes, 1, sizeof bytes, group.cases)) > 0;) {
    good = fwrite(bytes, 1, count, m_file) == count && good;
  }
  fputs("</testsuite>\n", m_file);
  return good && ferror(group.cases) == 0;
}

}  // namespace host
