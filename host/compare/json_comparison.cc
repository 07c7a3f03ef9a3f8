#include "base/json_parts.h"
#include "compare/comparison_forms.h"

namespace host {

namespace {

constexpr int kCompareSchema = 1;

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json Number(double value, bool known = true) { return known ? Json(value) : Json(); }

Json OriginJson(const ResultOrigin& origin) {
  return {{"path", origin.path},
          {"suite", TextOrNull(origin.suite)},
          {"engine", origin.engine},
          {"started", origin.started}};
}

template <typename Whole>
Json CountOrNull(const std::optional<Whole>& count) {
  return count ? Json(*count) : Json();
}

Json MeasureJson(const MeasureComparison& measure) {
  return {{"name", measure.kind.name},
          {"unit", measure.kind.unit},
          {"better", measure.kind.better},
          {"to_truth", measure.toTruth},
          {"untrusted", measure.untrusted},
          {"n", measure.count},
          {"clusters", CountOrNull(measure.clusters)},
          {"a", measure.a},
          {"b", measure.b},
          {"difference", measure.difference},
          {"low", Number(measure.low, measure.interval)},
          {"high", Number(measure.high, measure.interval)},
          {"p", measure.p},
          {"wins", measure.wins},
          {"losses", measure.losses},
          {"worst_case", TextOrNull(measure.worstCase)},
          {"margin", measure.margin},
          {"verdict", ChangeName(measure.verdict)},
          {"holds", measure.holds},
          {"more", CountOrNull(measure.more)}};
}

Json TimeJson(const TimeComparison& time) {
  const bool known = time.ratio > 0;
  return {{"name", time.name},
          {"unit", time.unit},
          {"n", time.count},
          {"a", time.a},
          {"b", time.b},
          {"ratio", Number(time.ratio, known)},
          {"quartiles", {Number(time.quartiles[0], known), Number(time.quartiles[1], known)}},
          {"margin", Number(time.margin, time.verdict.has_value())},
          {"verdict", time.verdict ? Json(ChangeName(*time.verdict)) : Json()}};
}

Json PlacesJson(const std::vector<OnlyThere>& places) {
  Json json = Json::array();
  for (const OnlyThere& each : places) {
    json.push_back(
        {{"case", each.caseId}, {"file", TextOrNull(each.file)}, {"name", TextOrNull(each.name)}});
  }
  return json;
}

}  // namespace

std::string JsonComparison(const Comparison& comparison) {
  Json json = {{"schema_version", kCompareSchema},
               {"a", OriginJson(comparison.a)},
               {"b", OriginJson(comparison.b)},
               {"verdict", ChangeName(comparison.verdict)}};
  json["measures"] = Json::array();
  for (const MeasureComparison& each : comparison.measures) {
    json["measures"].push_back(MeasureJson(each));
  }
  json["times"] = Json::array();
  for (const TimeComparison& each : comparison.times) json["times"].push_back(TimeJson(each));
  json["gone"] = PlacesJson(comparison.gone);
  json["new"] = PlacesJson(comparison.added);
  json["fallen"] = Json::array();
  for (const FallenVerdict& each : comparison.fallen) {
    json["fallen"].push_back({{"case", each.caseId}, {"a", each.a}, {"b", each.b}});
  }
  json["guards"] = Json::array();
  for (const NewGuard& each : comparison.guards) {
    json["guards"].push_back(
        {{"case", each.caseId}, {"file", TextOrNull(each.file)}, {"name", each.name}});
  }
  json["cases"] = comparison.cases;
  json["files"] = comparison.files;
  json["same_bytes"] = comparison.sameBytes;
  return JsonText(json);
}

}  // namespace host
