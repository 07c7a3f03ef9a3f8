#include "compare/results_parser.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

#include "harness/format_name.h"
#include "results/schema_versions.h"

namespace host {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr size_t kMaxMessageBytes = 200;

bool IsVerdict(std::string_view word) {
  constexpr std::string_view kVerdicts[] = {"pass", "warn", "fail", "error", "skip", "not_run"};
  return std::find(std::begin(kVerdicts), std::end(kVerdicts), word) != std::end(kVerdicts);
}

ComparedCase EmptyCase() { return {.elapsed = kNone, .cpu = kNone}; }

}  // namespace

ResultsParser::ResultsParser(ResultSet& set, KeptResults kept, Json::json_sax_t* listener)
    : m_set(set), m_kept(kept), m_listener(listener) {
  m_set.cases = {EmptyCase()};  // The run, if this is its report.
}

bool ResultsParser::Refuse(const std::string& fault) {
  if (m_fault.empty()) m_fault = Where() + fault.substr(0, kMaxMessageBytes);
  return false;
}

std::string ResultsParser::Where() const {
  if (std::find(m_places.begin(), m_places.end(), Place::kCase) == m_places.end()) return "";
  const ComparedCase& one = m_set.cases.back();
  if (!one.id.empty()) return "case " + one.id.substr(0, kMaxMessageBytes) + ": ";
  return "case number " + std::to_string(m_set.cases.size()) + ": ";
}

void ResultsParser::Finish() {
  if (m_version == 0) {
    Refuse("neither results of a suite nor the report of a run: it has no schema_version");
  } else if (!m_hasCases) {
    m_set.origin.report = true;
    Case().id = Case().routine;
    if (Case().routine.empty() && IsVerdict(Case().verdict)) {
      Refuse("the report of a run that was refused");
    } else if (Case().routine.empty() || !IsVerdict(Case().verdict)) {
      Refuse("neither results of a suite nor the report of a run: it has no cases");
    }
  }
  CheckVersion();
}

void ResultsParser::CheckVersion() {
  const int known = m_hasCases ? kResultsSchema : kReportSchema;
  if (m_version <= known) return;
  Refuse("a later audio_bench wrote it: it has schema_version " +
         harness::FormatName("%.15g", m_version) + ", this one reads " +
         (m_hasCases ? "results" : "reports") + " up to " + std::to_string(known));
}

bool ResultsParser::null() {
  if (m_listener != nullptr) m_listener->null();
  return Take({.isNull = true});
}
bool ResultsParser::boolean(bool value) {
  if (m_listener != nullptr) m_listener->boolean(value);
  return Take({.flag = value});
}
bool ResultsParser::number_integer(number_integer_t value) {
  if (m_listener != nullptr) m_listener->number_integer(value);
  const auto number = static_cast<double>(value);
  return Take({.number = &number});
}
bool ResultsParser::number_unsigned(number_unsigned_t value) {
  if (m_listener != nullptr) m_listener->number_unsigned(value);
  const auto number = static_cast<double>(value);
  return Take({.number = &number});
}
bool ResultsParser::number_float(number_float_t value, const string_t& text) {
  if (m_listener != nullptr) m_listener->number_float(value, text);
  return Take({.number = &value});
}
bool ResultsParser::string(string_t& value) {
  if (m_listener != nullptr) m_listener->string(value);
  return Take({.text = &value});
}
bool ResultsParser::binary(binary_t&) { return Refuse("no JSON"); }

bool ResultsParser::key(string_t& value) {
  if (m_listener != nullptr) m_listener->key(value);
  m_key = std::move(value);
  return true;
}

bool ResultsParser::start_object(size_t elements) {
  if (m_listener != nullptr) m_listener->start_object(elements);
  return Start(true);
}
bool ResultsParser::start_array(size_t elements) {
  if (m_listener != nullptr) m_listener->start_array(elements);
  return Start(false);
}
bool ResultsParser::end_object() {
  if (m_listener != nullptr) m_listener->end_object();
  return End();
}
bool ResultsParser::end_array() {
  if (m_listener != nullptr) m_listener->end_array();
  return End();
}

bool ResultsParser::parse_error(size_t position, const std::string&,
                                const nlohmann::detail::exception& error) {
  std::string text = error.what();
  // What is wrong comes after the name of the exception and the place.
  if (const size_t at = text.find(": "); at != std::string::npos) text.erase(0, at + 2);
  m_fault.clear();
  return Refuse("no whole JSON, at byte " + std::to_string(position) + ": " + text);
}

bool ResultsParser::Start(bool object) {
  if (m_ignored > 0) {
    ++m_ignored;
    return true;
  }
  const Place child = Child();
  const bool list = child == Place::kCases || child == Place::kArguments ||
                    child == Place::kFigures || child == Place::kGuards || child == Place::kOutputs;
  if (child == Place::kIgnored) {
    m_ignored = 1;
    return true;
  }
  if (list == object) {
    return Refuse(m_places.size() == 1 ? "no JSON object"
                                       : m_key + (list ? " is no list" : " is no object"));
  }
  m_places.push_back(child);
  m_factIsCpu = m_key == "cpu";
  if (child == Place::kCases) {
    m_hasCases = true;
    m_set.cases.clear();
  } else if (child == Place::kCase) {
    m_set.cases.push_back(EmptyCase());
  } else if (child == Place::kFigure || child == Place::kGuard || child == Place::kOutput) {
    m_entry = {.value = kNone, .truth = kNone};
  }
  return true;
}

bool ResultsParser::End() {
  if (m_ignored > 0) {
    --m_ignored;
    return true;
  }
  const Place ended = m_places.back();
  if (ended == Place::kFigure) EndFigure();
  if (ended == Place::kGuard) EndGuard();
  if (ended == Place::kOutput) EndOutput();
  if (ended == Place::kCase) CheckCase();
  m_places.pop_back();
  return m_fault.empty();
}

ResultsParser::Place ResultsParser::Child() const {
  switch (m_places.back()) {
    case Place::kDocument:
      return Place::kTop;
    case Place::kTop:
      return ChildOfTop();
    case Place::kEngine:
      return m_key == "version" ? Place::kEngineVersion : Place::kIgnored;
    case Place::kCases:
      return Place::kCase;
    case Place::kCase:
      return ChildOfCase();
    case Place::kFigures:
      return Place::kFigure;
    case Place::kGuards:
      return Place::kGuard;
    case Place::kOutputs:
      return Place::kOutput;
    case Place::kOutput:
      if (m_key == "sha256") return Place::kDigest;
      return m_key == "size" ? Place::kFact : Place::kIgnored;
    default:
      return Place::kIgnored;
  }
}

ResultsParser::Place ResultsParser::ChildOfTop() const {
  if (m_key == "cases") return Place::kCases;
  if (m_key == "engine") return Place::kEngine;
  if (m_key == "margins") return Place::kMargins;
  return m_hasCases ? Place::kIgnored : ChildOfCase();
}

ResultsParser::Place ResultsParser::ChildOfCase() const {
  if (m_key == "arguments") return Place::kArguments;
  if (m_key == "figures" || m_key == "results") return Place::kFigures;
  if (m_key == "guards") return Place::kGuards;
  if (m_key == "outputs") return Place::kOutputs;
  return m_key == "elapsed" || m_key == "cpu" ? Place::kFact : Place::kIgnored;
}

void ResultsParser::CheckCase() {
  const ComparedCase& one = Case();
  if (one.id.empty()) {
    Refuse("it is without an id");
  } else if (one.routine.empty()) {
    Refuse("it is without a routine");
  } else if (!IsVerdict(one.verdict)) {
    Refuse("\"" + one.verdict + "\" is no verdict");
  }
}

}  // namespace host
