#include "suite/case_record.h"
#include "suite/result_writer.h"

namespace host {

namespace {

std::string Text(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

JsonResults::JsonResults(FILE* file, const Json& header, const SuiteCounts& counts) : m_file(file) {
  fputs("{\n", m_file);
  for (const char* const key :
       {"schema_version", "bench", "engine", "host", "started", "command", "suite", "shard"}) {
    fprintf(m_file, "  \"%s\": %s,\n", key, Text(header.value(key, Json())).c_str());
  }
  fprintf(m_file, "  \"margins\": %s,\n", Text(header.value("margins", Json::object())).c_str());
  fprintf(m_file, "  \"counts\": %s,\n  \"cases\": [", Text(counts.AsJson()).c_str());
}

void JsonResults::Add(Json record) {
  record.erase(kFingerprintKey);
  record.erase(kLogTailKey);
  fprintf(m_file, "%s\n    %s", m_first ? "" : ",", Text(record).c_str());
  m_first = false;
}

void JsonResults::End() { fputs(m_first ? "]\n}\n" : "\n  ]\n}\n", m_file); }

}  // namespace host
