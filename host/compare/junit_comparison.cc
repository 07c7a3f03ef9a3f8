#include <algorithm>
#include <sstream>

#include "base/counted.h"
#include "compare/comparison_forms.h"
#include "report/xml_text.h"

namespace host {

namespace {

constexpr size_t kMaxLines = 200;

struct Failures {
  pugi::xml_node suite;
  size_t tests = 0;
  size_t failures = 0;
};

// A test case, which fails where `failure` says something.
pugi::xml_node AddTest(Failures& all, const std::string& kind, const std::string& name,
                       const std::string& failure, const std::string& text) {
  pugi::xml_node test = all.suite.append_child("testcase");
  SetAttribute(test, "classname", "compare." + kind);
  SetAttribute(test, "name", name);
  SetAttribute(test, "time", "0");
  ++all.tests;
  if (failure.empty()) return test;
  pugi::xml_node node = test.append_child("failure");
  SetAttribute(node, "message", failure);
  SetAttribute(node, "type", "worse");
  node.text().set(XmlText(text).c_str());
  ++all.failures;
  return test;
}

// One for a list of things none of which should be there.
void AddList(Failures& all, const std::string& name, const std::string& what,
             const std::vector<std::string>& lines) {
  std::string text;
  for (size_t i = 0; i < std::min(lines.size(), kMaxLines); ++i) text += lines[i] + "\n";
  if (lines.size() > kMaxLines) {
    text += "and " + std::to_string(lines.size() - kMaxLines) + " more\n";
  }
  const std::string failure = lines.empty() ? "" : std::to_string(lines.size()) + " " + what;
  AddTest(all, "cases", name, failure, text);
}

std::string MeasureText(const MeasureComparison& measure) {
  std::ostringstream text;
  text << ChangeName(measure.verdict) << ": " << measure.a << " and " << measure.b << " "
       << measure.kind.unit << ", difference " << measure.difference;
  if (measure.interval) text << " (" << measure.low << " to " << measure.high << ")";
  text << ", margin " << measure.margin << ", "
       << Counted(static_cast<uint64_t>(measure.count), "case");
  if (!measure.worstCase.empty()) text << ", worst " << measure.worstCase;
  return text.str();
}

std::string MeasureName(const MeasureComparison& measure) {
  return measure.kind.name + (measure.toTruth ? " from the truth" : "") + ", " + measure.kind.unit;
}

}  // namespace

std::string JunitComparison(const Comparison& comparison) {
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("testsuites");
  Failures all = {.suite = root.append_child("testsuite")};
  std::vector<std::string> fallen;
  for (const FallenVerdict& each : comparison.fallen) {
    fallen.push_back(each.caseId + ": " + each.a + " to " + each.b);
  }
  AddList(all, "verdicts", "have fallen", fallen);
  AddList(all, "guards", "are new", PlaceTexts(comparison.guards));
  AddList(all, "files and figures", "are gone", PlaceTexts(comparison.gone));
  for (const MeasureComparison& each : comparison.measures) {
    const std::string text = MeasureText(each);
    const bool fails = IsWorse(each.verdict) && each.holds;
    pugi::xml_node test = AddTest(all, "measures", MeasureName(each), fails ? text : "", text);
    if (!fails) AddText(test, "system-out", text + "\n");
  }
  for (const TimeComparison& each : comparison.times) {
    if (!each.verdict) continue;
    const std::string text =
        std::string(ChangeName(*each.verdict)) + ": ratio " + std::to_string(each.ratio);
    AddTest(all, "times", each.name, IsWorse(*each.verdict) ? text : "", text);
  }
  for (pugi::xml_node node : {root, all.suite}) {
    SetAttribute(node, "name", "audio_bench compare");
    SetAttribute(node, "tests", std::to_string(all.tests));
    SetAttribute(node, "failures", std::to_string(all.failures));
    SetAttribute(node, "errors", "0");
    SetAttribute(node, "skipped", "0");
    SetAttribute(node, "time", "0");
  }
  // A date without a zone is what is read.
  std::string started = comparison.b.started;
  if (started.ends_with('Z')) started.pop_back();
  SetAttribute(all.suite, "timestamp", started);
  std::ostringstream text;
  document.save(text, "  ", pugi::format_default, pugi::encoding_utf8);
  return text.str();
}

}  // namespace host
