#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/json_parts.h"
#include "compare/result_set.h"

namespace host {

// What is kept of each case.
enum class KeptResults { kAll, kVerdicts };

// Fills a ResultSet in while results.json, a report or a baseline is read, of which no more than
// that is kept. Stops at the first thing that is not as the schema has it.
class ResultsParser : public Json::json_sax_t {
 public:
  // `listener` gets each event first; null for none.
  explicit ResultsParser(ResultSet& set, KeptResults kept = KeptResults::kAll,
                         Json::json_sax_t* listener = nullptr);

  // After the document: what it lacks.
  void Finish();

  // What is wrong, after the name of the file; empty when nothing is.
  const std::string& fault() const { return m_fault; }

  bool null() override;
  bool boolean(bool value) override;
  bool number_integer(number_integer_t value) override;
  bool number_unsigned(number_unsigned_t value) override;
  bool number_float(number_float_t value, const string_t& text) override;
  bool string(string_t& value) override;
  bool binary(binary_t& value) override;
  bool start_object(size_t elements) override;
  bool key(string_t& value) override;
  bool end_object() override;
  bool start_array(size_t elements) override;
  bool end_array() override;
  bool parse_error(size_t position, const std::string& token,
                   const nlohmann::detail::exception& error) override;

 private:
  // Where in the document the reader is.
  enum class Place {
    kDocument,
    kIgnored,
    kTop,
    kEngine,
    kEngineVersion,
    kMargins,
    kCases,
    kCase,
    kArguments,
    kFact,    // A figure of a report: {"value": 0.5, "unit": "s"}.
    kDigest,  // The same of a hash.
    kFigures,
    kFigure,
    kGuards,
    kGuard,
    kOutputs,
    kOutput
  };
  // A number, a text, or neither.
  struct Scalar {
    const double* number = nullptr;
    const std::string* text = nullptr;
    bool flag = false;
    bool isNull = false;
  };
  // A figure, guard or output as far as it has been read.
  struct Entry {
    MeasureKind kind = {};
    std::optional<std::string> file = {};
    std::optional<std::string> sha256 = {};
    double value = 0;
    double truth = 0;
    int channel = TextTable::kNone;
    bool untrusted = false;
    bool absent = false;  // An output that a report declares and that is not there.
  };

  ComparedCase& Case() { return m_set.cases.back(); }
  bool Refuse(const std::string& fault);
  std::string Where() const;
  bool Start(bool object);
  bool End();
  Place Child() const;
  Place ChildOfTop() const;
  Place ChildOfCase() const;
  bool Take(const Scalar& value);
  bool TakeOfTop(const Scalar& value);
  bool TakeOfCase(const Scalar& value);
  bool TakeOfEntry(const Scalar& value);
  bool TakeText(const Scalar& value, std::string& to);
  bool TakeNumber(const Scalar& value, double& to);
  void EndFigure();
  void EndGuard();
  void EndOutput();
  void CheckCase();
  void CheckVersion();
  int KindOf(const MeasureKind& kind);

  ResultSet& m_set;
  KeptResults m_kept;
  Json::json_sax_t* m_listener;
  std::vector<Place> m_places = {Place::kDocument};
  size_t m_ignored = 0;  // Levels of what is not taken.
  std::string m_key;
  std::string m_fault;
  Entry m_entry;
  bool m_factIsCpu = false;
  size_t m_lastKind = 0;
  bool m_hasCases = false;
  double m_version = 0;  // Of the schema; 0 where there is none.
};

}  // namespace host
