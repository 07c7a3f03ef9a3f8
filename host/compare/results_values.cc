#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "compare/results_parser.h"

namespace host {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr int kMaxChannel = 1 << 16;

bool IsDirection(std::string_view word) {
  return word == "higher" || word == "lower" || word == "none";
}

}  // namespace

bool ResultsParser::Take(const Scalar& value) {
  if (m_ignored > 0) return true;
  switch (m_places.back()) {
    case Place::kDocument:
      return Refuse("no JSON object");
    case Place::kTop:
      return TakeOfTop(value);
    case Place::kEngine:
      return m_key != "name" || TakeText(value, m_set.origin.engine);
    case Place::kEngineVersion:
      if (m_key == "value" && value.text != nullptr) m_set.origin.engine += " " + *value.text;
      return true;
    case Place::kMargins:
      if (value.number == nullptr || *value.number < 0) {
        return Refuse("the margin of " + m_key + " is no number from 0 on");
      }
      m_set.margins.emplace_back(m_key, *value.number);
      return true;
    case Place::kCase:
      return TakeOfCase(value);
    case Place::kArguments:
      return TakeText(value, Case().arguments.emplace_back());
    case Place::kFact:
      if (m_key != "value") return true;
      if (m_places[m_places.size() - 2] != Place::kOutput) {
        double& time = m_factIsCpu ? Case().cpu : Case().elapsed;
        return TakeNumber(value, time);
      }
      m_entry.absent = value.isNull;
      return true;
    case Place::kDigest:
      if (m_key == "value" && value.text != nullptr) m_entry.sha256 = *value.text;
      return true;
    case Place::kFigure:
    case Place::kGuard:
    case Place::kOutput:
      return TakeOfEntry(value);
    default:
      return Refuse("a list holds something else than objects");
  }
}

bool ResultsParser::TakeOfTop(const Scalar& value) {
  if (m_key == "schema_version") {
    if (value.number == nullptr || *value.number < 1 ||
        *value.number != std::floor(*value.number)) {
      return Refuse("schema_version is no whole number from 1 on");
    }
    m_version = *value.number;
    return true;
  }
  if (m_key == "cases") return Refuse("cases is no list");
  if (m_key == "suite") return TakeText(value, m_set.origin.suite);
  if (m_key == "started") return TakeText(value, m_set.origin.started);
  return m_hasCases || TakeOfCase(value);
}

bool ResultsParser::TakeOfCase(const Scalar& value) {
  ComparedCase& one = Case();
  if (m_key == "id") return TakeText(value, one.id);
  if (m_key == "routine") return TakeText(value, one.routine);
  if (m_key == "verdict") return TakeText(value, one.verdict);
  if (m_key == "cluster") return TakeText(value, one.cluster);
  if (m_key == "elapsed") return TakeNumber(value, one.elapsed);
  if (m_key == "cpu") return TakeNumber(value, one.cpu);
  const bool list = m_key == "arguments" || m_key == "figures" || m_key == "results" ||
                    m_key == "guards" || m_key == "outputs";
  return !list || Refuse(m_key + " is no list");
}

bool ResultsParser::TakeOfEntry(const Scalar& value) {
  if (m_key == "name") return TakeText(value, m_entry.kind.name);
  if (m_key == "unit") return TakeText(value, m_entry.kind.unit);
  if (m_key == "better") return TakeText(value, m_entry.kind.better);
  if (m_key == "file" || m_key == "sha256") {
    if (value.isNull) return true;
    return TakeText(value, (m_key == "file" ? m_entry.file : m_entry.sha256).emplace());
  }
  if (m_key == "truth") return TakeNumber(value, m_entry.truth);
  if (m_key == "value") {
    // The result of a routine may be a text, which is not compared.
    return value.text != nullptr || TakeNumber(value, m_entry.value);
  }
  if (m_key == "untrusted") m_entry.untrusted = value.flag;
  if (m_key != "version" && m_key != "channel") return true;
  double number = TextTable::kNone;
  if (!TakeNumber(value, number)) return false;
  if (std::isnan(number)) return true;
  if (number != std::floor(number) || number < 0 || number > kMaxChannel) {
    return Refuse(m_key + " is no whole number in range");
  }
  (m_key == "version" ? m_entry.kind.version : m_entry.channel) = static_cast<int>(number);
  return true;
}

bool ResultsParser::TakeText(const Scalar& value, std::string& to) {
  if (value.isNull) return true;
  if (value.text == nullptr) return Refuse(m_key + " is no text");
  to = *value.text;
  return true;
}

bool ResultsParser::TakeNumber(const Scalar& value, double& to) {
  if (value.isNull) {
    to = kNone;
    return true;
  }
  if (value.number == nullptr) return Refuse(m_key + " is no number");
  to = *value.number;
  return true;
}

int ResultsParser::KindOf(const MeasureKind& kind) {
  // The figures of one case come in the order of those of the one before.
  ++m_lastKind;
  if (m_lastKind < m_set.kinds.size() && m_set.kinds[m_lastKind] == kind) {
    return static_cast<int>(m_lastKind);
  }
  const auto there = std::find(m_set.kinds.begin(), m_set.kinds.end(), kind);
  m_lastKind = static_cast<size_t>(there - m_set.kinds.begin());
  if (there == m_set.kinds.end()) m_set.kinds.push_back(kind);
  return static_cast<int>(m_lastKind);
}

void ResultsParser::EndFigure() {
  if (m_entry.kind.name.empty()) {
    Refuse("a figure is without a name");
    return;
  }
  if (!IsDirection(m_entry.kind.better)) {
    Refuse("of " + m_entry.kind.name + " it is not known whether higher or lower is better");
    return;
  }
  if (m_kept == KeptResults::kVerdicts) return;
  const int file = m_entry.file ? m_set.texts.Number(*m_entry.file) : TextTable::kNone;
  Case().figures.push_back({.kind = KindOf(m_entry.kind),
                            .file = file,
                            .channel = m_entry.channel,
                            .value = m_entry.value,
                            .truth = m_entry.truth});
  std::vector<std::string>& untrusted = m_set.untrusted;
  const std::string& name = m_entry.kind.name;
  if (m_entry.untrusted && std::find(untrusted.begin(), untrusted.end(), name) == untrusted.end()) {
    untrusted.push_back(name);
  }
}

void ResultsParser::EndGuard() {
  if (m_entry.kind.name.empty()) {
    Refuse("a guard is without a name");
    return;
  }
  if (m_kept == KeptResults::kVerdicts) return;
  const int file = m_entry.file ? m_set.texts.Number(*m_entry.file) : TextTable::kNone;
  const ComparedGuard guard = {m_set.texts.Number(m_entry.kind.name), file};
  std::vector<ComparedGuard>& guards = Case().guards;
  if (std::find(guards.begin(), guards.end(), guard) == guards.end()) guards.push_back(guard);
}

void ResultsParser::EndOutput() {
  if (m_entry.absent || m_kept == KeptResults::kVerdicts) return;
  Case().outputs.push_back({m_set.texts.Number(m_entry.kind.name), m_entry.sha256.value_or("")});
}

}  // namespace host
