#include "report_page/record_reader.h"

#include <utility>

namespace host {

RecordReader::RecordReader(std::function<bool(size_t at)> wants,
                           std::function<void(size_t at, Json record)> take)
    : m_wants(std::move(wants)), m_take(std::move(take)) {}

// Whether the next value is a case: the document and its list of cases have begun.
bool RecordReader::InCases() const { return m_casesOpen && m_open.size() == 2; }

bool RecordReader::key(string_t& value) {
  if (m_skipped == 0) m_key = value;
  return true;
}

bool RecordReader::Add(Json value) {
  if (m_skipped > 0) return true;
  if (m_open.empty()) {
    m_document = std::move(value);
    return true;
  }
  Json& parent = *m_open.back();
  if (parent.is_array()) {
    parent.push_back(std::move(value));
  } else {
    parent[m_key] = std::move(value);
  }
  return true;
}

bool RecordReader::Start(Json empty) {
  if (m_skipped > 0 || (InCases() && !m_wants(m_at))) {
    ++m_skipped;
    return true;
  }
  const bool isList = empty.is_array();
  const bool isCases = m_open.size() == 1 && m_key == "cases" && isList;
  if (m_open.empty()) {
    m_document = std::move(empty);
    m_open.push_back(&m_document);
    return true;
  }
  Json& parent = *m_open.back();
  if (parent.is_array()) {
    parent.push_back(std::move(empty));
    m_open.push_back(&parent.back());
  } else {
    m_open.push_back(&(parent[m_key] = std::move(empty)));
  }
  m_casesOpen = m_casesOpen || isCases;
  return true;
}

bool RecordReader::End() {
  if (m_skipped > 0) {
    if (--m_skipped == 0) ++m_at;
    return true;
  }
  m_open.pop_back();
  if (InCases()) {
    Json record = std::move(m_open.back()->back());
    m_open.back()->clear();
    m_take(m_at++, std::move(record));
  } else if (m_open.size() == 1) {
    m_casesOpen = false;
  }
  return true;
}

}  // namespace host
