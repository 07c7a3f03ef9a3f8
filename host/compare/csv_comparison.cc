#include <initializer_list>

#include "base/json_parts.h"
#include "compare/comparison_forms.h"
#include "report/csv_field.h"

namespace host {

namespace {

// The shortest text that is read back as the same number.
std::string Number(double value) { return Json(value).dump(); }

std::string Row(std::initializer_list<std::string> fields) {
  std::string row;
  for (const std::string& field : fields) row += (row.empty() ? "" : ",") + CsvField(field);
  return row + "\n";
}

std::string MeasureRow(const MeasureComparison& measure) {
  const auto end = [&](double value) { return measure.interval ? Number(value) : ""; };
  return Row({"measure", measure.kind.name, measure.kind.unit, measure.kind.better,
              std::to_string(measure.count),
              measure.clusters ? std::to_string(*measure.clusters) : "", Number(measure.a),
              Number(measure.b), Number(measure.difference), end(measure.low), end(measure.high),
              Number(measure.p), std::to_string(measure.wins), std::to_string(measure.losses),
              measure.worstCase, Number(measure.margin), ChangeName(measure.verdict), "", ""});
}

// The difference of a time is the ratio less 1, its interval the quartiles less 1.
std::string TimeRow(const TimeComparison& time) {
  const auto share = [&](double ratio) { return time.ratio > 0 ? Number(ratio - 1) : ""; };
  return Row({"time", time.name, time.unit, "lower", std::to_string(time.count), "", Number(time.a),
              Number(time.b), share(time.ratio), share(time.quartiles[0]), share(time.quartiles[1]),
              "", "", "", "", time.verdict ? Number(time.margin) : "",
              time.verdict ? ChangeName(*time.verdict) : "", "", ""});
}

std::string PlaceRow(const std::string& kind, const std::string& name, const std::string& verdict,
                     const std::string& caseId, const std::string& file) {
  return Row(
      {kind, name, "", "", "", "", "", "", "", "", "", "", "", "", "", "", verdict, caseId, file});
}

}  // namespace

std::string CsvComparison(const Comparison& comparison) {
  std::string text =
      "kind,name,unit,better,n,clusters,a,b,difference,low,high,p,wins,losses,worst_case,margin,"
      "verdict,case,file\n";
  for (const FallenVerdict& each : comparison.fallen) {
    text += PlaceRow("fallen", each.a + " to " + each.b, "worse", each.caseId, "");
  }
  for (const NewGuard& each : comparison.guards) {
    text += PlaceRow("guard", each.name, "worse", each.caseId, each.file);
  }
  for (const OnlyThere& each : comparison.gone) {
    text += PlaceRow("gone", each.name, "worse", each.caseId, each.file);
  }
  for (const MeasureComparison& each : comparison.measures) text += MeasureRow(each);
  for (const TimeComparison& each : comparison.times) text += TimeRow(each);
  for (const OnlyThere& each : comparison.added) {
    text += PlaceRow("new", each.name, "", each.caseId, each.file);
  }
  return text;
}

}  // namespace host
