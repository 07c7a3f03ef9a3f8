#include "selftest/selftest_forms.h"

#include <algorithm>
#include <cstdio>

#include "audio_measures/measure.h"
#include "base/json_parts.h"
#include "selftest/build_ids.h"

namespace host {

namespace {

using audio_measures::Measure;

// What the controls of one measure have shown.
struct Findings {
  const Measure* measure = nullptr;
  std::vector<const Outcome*> outcomes = {};
  size_t passed = 0;
  double worst = 0;  // Deviation over tolerance.

  bool Holds() const { return !outcomes.empty() && passed == outcomes.size(); }
};

std::vector<Findings> Sorted(std::span<const std::string_view> names,
                             std::span<const Outcome> outcomes) {
  std::vector<Findings> all;
  for (const std::string_view name : names) {
    Findings findings = {.measure = audio_measures::FindMeasure(name)};
    for (const Outcome& outcome : outcomes) {
      if (outcome.expected.measure != name) continue;
      findings.outcomes.push_back(&outcome);
      findings.passed += outcome.holds ? 1 : 0;
      findings.worst = std::max(findings.worst, outcome.deviation);
    }
    all.push_back(std::move(findings));
  }
  return all;
}

std::string Number(double value) {
  char text[40];
  snprintf(text, sizeof text, "%.6g", value);
  return text;
}

std::string Padded(std::string text, size_t width) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

std::string FailureText(const Outcome& outcome, const Measure& measure) {
  const Expected& expected = outcome.expected;
  const std::string unit = measure.unit.empty() ? "" : " " + std::string(measure.unit);
  const std::string wanted = expected.reason.empty()
                                 ? Number(expected.value) + " +- " + Number(expected.tolerance)
                                 : "none (" + expected.reason + ")";
  const std::string got =
      outcome.value ? Number(*outcome.value) + unit : "none (" + outcome.reason + ")";
  return "  " + outcome.control->name + "\n    is " + got + ", should be " + wanted +
         (expected.reason.empty() ? unit : "") + "\n    " + outcome.control->theory + "\n";
}

Json ControlJson(const Outcome& outcome) {
  const Expected& expected = outcome.expected;
  const bool value = expected.reason.empty();
  return {{"name", outcome.control->name},
          {"theory", outcome.control->theory},
          {"channel", expected.channel ? Json(*expected.channel) : Json()},
          {"expected", value ? Json(expected.value) : Json()},
          {"tolerance", value ? Json(expected.tolerance) : Json()},
          {"expected_reason", value ? Json() : Json(expected.reason)},
          {"value", outcome.value ? Json(*outcome.value) : Json()},
          {"reason", outcome.value ? Json() : Json(outcome.reason)},
          {"deviation", value && outcome.value ? Json(outcome.deviation) : Json()},
          {"holds", outcome.holds}};
}

}  // namespace

std::string SelftestText(std::span<const std::string_view> names,
                         std::span<const Outcome> outcomes) {
  const std::vector<Findings> all = Sorted(names, outcomes);
  size_t width = 0;
  for (const Findings& each : all) width = std::max(width, each.measure->name.size());
  std::string text = Padded("measure", width) + "  controls  worst deviation of tolerance\n";
  size_t failed = 0;
  for (const Findings& each : all) {
    const std::string held =
        std::to_string(each.passed) + " of " + std::to_string(each.outcomes.size());
    text += Padded(std::string(each.measure->name), width) + "  " + Padded(held, 8) + "  " +
            Number(each.worst) + (each.Holds() ? "\n" : "  does not hold\n");
    for (const Outcome* const outcome : each.outcomes) {
      if (!outcome->holds) text += FailureText(*outcome, *each.measure);
    }
    failed += each.Holds() ? 0 : 1;
  }
  return text + (failed == 0 ? "All measures hold.\n"
                             : std::to_string(failed) + " of " + std::to_string(all.size()) +
                                   " measures do not hold; their figures are untrusted.\n");
}

std::string SelftestJson(std::span<const std::string_view> names,
                         std::span<const Outcome> outcomes) {
  const std::vector<Findings> all = Sorted(names, outcomes);
  Json measures = Json::array();
  for (const Findings& each : all) {
    Json controls = Json::array();
    for (const Outcome* const outcome : each.outcomes) controls.push_back(ControlJson(*outcome));
    measures.push_back({{"name", std::string(each.measure->name)},
                        {"unit", std::string(each.measure->unit)},
                        {"version", each.measure->version},
                        {"holds", each.Holds()},
                        {"passed", each.passed},
                        {"worst", each.worst},
                        {"controls", controls}});
  }
  const std::string build = BuildIds();
  const bool hold = std::ranges::all_of(all, [](const Findings& each) { return each.Holds(); });
  return JsonText({{"schema_version", 1},
                   {"build", build.empty() ? Json() : Json(build)},
                   {"holds", hold},
                   {"measures", measures}});
}

}  // namespace host
