#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "base/json_parts.h"

namespace host {

// Makes objects of a document that is read: of results.json one case after the other, of which none
// is kept, and of all else the header. The report of a run is its header.
class RecordReader : public Json::json_sax_t {
 public:
  // `wants` is asked of each case by its place, counted from 0; `take` gets those that are wanted.
  RecordReader(std::function<bool(size_t at)> wants,
               std::function<void(size_t at, Json record)> take);

  // After the document. "cases" is empty.
  const Json& header() const { return m_document; }
  bool hasCases() const { return m_document.is_object() && m_document.contains("cases"); }

  bool null() override { return Add(Json()); }
  bool boolean(bool value) override { return Add(value); }
  bool number_integer(number_integer_t value) override { return Add(value); }
  bool number_unsigned(number_unsigned_t value) override { return Add(value); }
  bool number_float(number_float_t value, const string_t&) override { return Add(value); }
  bool string(string_t& value) override { return Add(value); }
  bool binary(binary_t&) override { return true; }
  bool start_object(size_t) override { return Start(Json::object()); }
  bool key(string_t& value) override;
  bool end_object() override { return End(); }
  bool start_array(size_t) override { return Start(Json::array()); }
  bool end_array() override { return End(); }
  bool parse_error(size_t, const std::string&, const nlohmann::detail::exception&) override {
    return false;
  }

 private:
  bool Add(Json value);
  bool Start(Json empty);
  bool End();
  bool InCases() const;

  std::function<bool(size_t)> m_wants;
  std::function<void(size_t, Json)> m_take;
  Json m_document;
  std::vector<Json*> m_open;  // The objects and lists that have begun, the outermost first.
  size_t m_skipped = 0;       // Levels of a case that is not wanted.
  size_t m_at = 0;            // Of the next case.
  std::string m_key;
  bool m_casesOpen = false;
};

}  // namespace host
